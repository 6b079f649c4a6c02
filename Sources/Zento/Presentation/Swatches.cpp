#include "Zento/Presentation/PictureProvider.h"
#include "Zento/Screenshot/ShotPresets.h"
#include "ZentoCore/BackgroundCatalog.h"
#include "ZentoCore/Error.h"
#include "ZentoImaging/Convert.h"
#include "ZentoImaging/ImageFile.h"
#include "ZentoMedia/VideoDecoder.h"
#include "ZentoRender/BackgroundRenderer.h"
#include "ZentoRender/CursorSprite.h"
#include "ZentoRender/TextCardLayout.h"

#include <QUrl>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace zento {
namespace {

std::string word(const QString& id, int index)
{
    const QString part = id.section(QLatin1Char('/'), index, index);
    return QUrl::fromPercentEncoding(part.toUtf8()).toStdString();
}

/// Everything behind the first slash: a path may have arrived with its slashes decoded.
std::string pathBehindKind(const QString& id)
{
    return QUrl::fromPercentEncoding(id.section(QLatin1Char('/'), 1).toUtf8()).toStdString();
}

Canvas fill(const Canvas& image, int width, int height)
{
    const double scale = std::max(double(width) / image.width(), double(height) / image.height());
    const double w = image.width() * scale;
    const double h = image.height() * scale;
    Canvas canvas(width, height);
    canvas.drawImage(image, {(width - w) / 2, (height - h) / 2, w, h});
    return canvas;
}

Canvas drawBackground(const std::string& id, int width, int height)
{
    const BackgroundPreset* preset = BackgroundCatalog::preset(id);
    if (!preset)
        throw Error(ErrorCode::kUndecodable, "There is no background \"" + id + "\"");
    return BackgroundRenderer::render(preset->background, width, height);
}

Canvas drawPicture(const std::string& path, int width, int height)
{
    // Twice the size leaves enough to scale from, whatever the picture's shape.
    constexpr int kSpare = 2;
    return fill(loadImage(path, kSpare * std::max(width, height)), width, height);
}

// The words of a card take up a small part of a film. The tile is a window onto the middle of a
// larger frame, or onto its lower left where the design puts them there.
Canvas drawCard(const QString& id, int width, int height)
{
    constexpr double kMagnification = 2.2;
    const TextCard card{
        .title = word(id, 3),
        .subtitle = word(id, 4),
        .design = word(id, 1),
        .accentHex = "#" + word(id, 2)};
    const OutputSpec frame{
        .width = static_cast<int>(std::lround(width * kMagnification)),
        .height = static_cast<int>(std::lround(height * kMagnification))};
    const TextCardLayout layout = layOut(card, frame);
    const double left = layout.design == CardDesign::Editorial || layout.design == CardDesign::Mono
                            ? layout.place.x - width * 0.1
                            : (frame.width - width) / 2.0;
    const double top = std::clamp(
        layout.place.y + layout.place.h / 2 - height / 2.0, 0.0, double(frame.height - height));
    Canvas canvas =
        BackgroundRenderer::render(Background::LinearGradient{"#2A2E3D", "#0C0E14"}, width, height);
    draw(
        layout,
        BackgroundRenderer::color(card.accentHex),
        Ground::Dark,
        canvas,
        {std::round(left), std::round(top)});
    return canvas;
}

Canvas drawPointer(const std::string& shape, int width, int height)
{
    constexpr double kShare = 0.62; // of the tile's height
    const auto sprite =
        shape == "hand" ? CursorSprite::Shape::PointingHand : CursorSprite::Shape::Arrow;
    const Vec2 size = CursorSprite::size(sprite);
    const double h = height * kShare;
    const double w = size.x / size.y * h;
    Canvas canvas(width, height);
    CursorSprite::draw(canvas, sprite, {(width - w) / 2, (height - h) / 2}, h);
    return canvas;
}

// A look of a screenshot: its background under a small white card.
Canvas drawShotCard(Canvas ground)
{
    const double unit = ground.height() / 40.0;
    const Rect card{12 * unit, 9 * unit, ground.width() - 24 * unit, ground.height() - 18 * unit};
    Canvas shadow(ground.width(), ground.height());
    shadow.fill(
        Path().roundedRect({card.x, card.y + 2 * unit, card.w, card.h}, 3 * unit),
        Color::gray(0, 0.3));
    shadow.blur(3 * unit);
    ground.drawImage(shadow, ground.bounds(), Interpolation::Nearest);
    ground.fill(Path().roundedRect(card, 3 * unit), Color::gray(1, 0.92));
    return ground;
}

Canvas checkered(int width, int height)
{
    constexpr int kAcross = 10;
    const double cell = static_cast<double>(width) / kAcross;
    Canvas canvas(width, height);
    canvas.fillAll(Color::gray(0.32));
    for (int y = 0; y * cell < height; ++y)
        for (int x = y % 2; x < kAcross; x += 2)
            canvas.fill(Path().rect({x * cell, y * cell, cell, cell}), Color::gray(0.42));
    return canvas;
}

Canvas drawLook(const std::string& id, int width, int height)
{
    constexpr std::string_view kCatalogue = "bg-";
    if (id.starts_with(kCatalogue))
        return drawBackground(id.substr(kCatalogue.size()), width, height);
    for (const ShotPreset& preset : ShotPresets::all())
        if (preset.id == id)
            return preset.style.bare
                       ? checkered(width, height)
                       : BackgroundRenderer::render(preset.style.background, width, height);
    throw Error(ErrorCode::kUndecodable, "There is no look \"" + id + "\"");
}

} // namespace

Canvas drawSwatch(const QString& id, int width, int height)
{
    const QString kind = id.section(QLatin1Char('/'), 0, 0);
    if (kind == QStringLiteral("background"))
        return drawBackground(word(id, 1), width, height);
    if (kind == QStringLiteral("picture"))
        return drawPicture(pathBehindKind(id), width, height);
    if (kind == QStringLiteral("card"))
        return drawCard(id, width, height);
    if (kind == QStringLiteral("pointer"))
        return drawPointer(word(id, 1), width, height);
    if (kind == QStringLiteral("shot"))
        return drawShotCard(drawLook(word(id, 1), width, height));
    if (kind == QStringLiteral("shotpicture"))
        return drawShotCard(drawPicture(pathBehindKind(id), width, height));
    throw Error(ErrorCode::kUndecodable, "There is no swatch \"" + id.toStdString() + "\"");
}

Canvas drawRecording(const QString& id, int width, int height)
{
    const std::filesystem::path bundle =
        QUrl::fromPercentEncoding(id.section(QLatin1Char('/'), 0, -2).toUtf8()).toStdString();
    const bool isFilm = id.section(QLatin1Char('/'), -1).startsWith(QStringLiteral("film"));
    const std::filesystem::path film =
        isFilm ? std::filesystem::path(bundle).replace_extension("mp4") : bundle / "screen.mov";
    VideoDecoder decoder(film);
    // The first pictures often show the desktop before anything has happened.
    constexpr int kFrame = 12;
    std::optional<VideoFrame> frame = decoder.next();
    for (int i = 0; i < kFrame && frame; ++i) {
        std::optional<VideoFrame> next = decoder.next();
        if (!next)
            break;
        frame = std::move(next);
    }
    if (!frame)
        throw Error(ErrorCode::kNoFrames, "\"" + film.string() + "\" holds no picture");
    return fill(
        frame->bitDepth() == 8 ? toCanvas(frame->planes8()) : toCanvas(frame->planes10()),
        width,
        height);
}

} // namespace zento
