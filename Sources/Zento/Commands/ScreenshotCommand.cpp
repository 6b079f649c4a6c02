#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Commands/TargetChoice.h"
#include "ZentoCapture/ScreenshotTool.h"
#include "ZentoCore/Error.h"
#include "ZentoImaging/ImageFile.h"

#include <QDateTime>

#include <array>
#include <filesystem>
#include <iostream>
#include <utility>

namespace zento {

namespace {

std::filesystem::path newFile()
{
    const QString time =
        QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
    return std::filesystem::current_path() / ("Zento " + time.toStdString() + ".png");
}

} // namespace

void screenshot(std::span<const std::string_view> words, const ShotEdit& editShot)
{
    constexpr std::array<OptionSpec, 5> kOptions{
        {{"--screen", "N"},
         {"--window", "ID"},
         {"--area", "X,Y,W,H"},
         {"--edit", ""},
         {"--output", "FILE"}}};
    const Arguments arguments(words, kOptions);
    arguments.expectNone();
    const TargetChoice choice = readTarget(arguments);
    const auto output = arguments.value("--output");
    const auto desktop = openDesktop();
    Shot shot = ScreenshotTool::capture(*desktop, chosenTarget(choice, *desktop));
    if (!arguments.has("--edit")) {
        const std::filesystem::path file = output ? std::filesystem::path(*output) : newFile();
        savePng(*shot.image, file, shot.scale);
        std::cout << file.string() << '\n';
    } else if (editShot) {
        editShot(
            std::move(shot),
            output ? std::optional(std::filesystem::absolute(*output)) : std::nullopt);
    } else {
        throw Error(ErrorCode::kNoShot, "this program has no editor");
    }
}

} // namespace zento
