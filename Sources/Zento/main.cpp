#include "Zento/Application/Application.h"
#include "Zento/Commands/Commands.h"

#include <string_view>
#include <utility>
#include <vector>

int main(int argc, char** argv)
{
    if (argc <= 1)
        return zento::runApplication(argc, argv);
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    return zento::runCommand(words, [&](zento::Shot shot, const auto& file) {
        zento::editScreenshot(argc, argv, std::move(shot), file);
    });
}
