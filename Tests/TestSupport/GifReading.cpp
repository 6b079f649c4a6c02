#include "TestSupport/GifReading.h"

#include <gif_lib.h>

#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>

namespace zento::test {

namespace {

struct Close {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};

void draw(
    const SavedImage& image,
    const ColorMapObject& colors,
    int transparent,
    ReadGif& gif,
    std::vector<std::uint32_t>& canvas)
{
    const GifImageDesc& area = image.ImageDesc;
    const std::uint8_t* index = image.RasterBits;
    for (int y = area.Top; y < area.Top + area.Height; ++y) {
        for (int x = area.Left; x < area.Left + area.Width; ++x, ++index) {
            if (*index == transparent)
                continue;
            if (*index >= colors.ColorCount || x >= gif.width || y >= gif.height)
                throw std::runtime_error("an index without a colour or a pixel outside");
            const GifColorType& c = colors.Colors[*index];
            canvas
                [static_cast<std::size_t>(y) * static_cast<std::size_t>(gif.width)
                 + static_cast<std::size_t>(x)] =
                    static_cast<std::uint32_t>(c.Red << 16 | c.Green << 8 | c.Blue);
        }
    }
}

bool saysForEver(std::span<const ExtensionBlock> blocks)
{
    for (std::size_t i = 0; i + 1 < blocks.size(); ++i) {
        const ExtensionBlock& next = blocks[i + 1];
        if (blocks[i].ByteCount == 11 && std::memcmp(blocks[i].Bytes, "NETSCAPE2.0", 11) == 0)
            return next.ByteCount == 3 && next.Bytes[1] == 0 && next.Bytes[2] == 0;
    }
    return false;
}

std::span<const ExtensionBlock> extensions(const SavedImage& image)
{
    return {image.ExtensionBlocks, static_cast<std::size_t>(image.ExtensionBlockCount)};
}

} // namespace

std::uint32_t ReadGif::pixel(const ShownGifFrame& frame, int x, int y) const
{
    return frame.pixels
        [static_cast<std::size_t>(y) * static_cast<std::size_t>(width)
         + static_cast<std::size_t>(x)];
}

int ReadGif::duration() const
{
    int sum = 0;
    for (const ShownGifFrame& frame : frames)
        sum += frame.delay;
    return sum;
}

ReadGif readGif(const std::filesystem::path& path)
{
    int error = 0;
    const std::unique_ptr<GifFileType, Close> file(DGifOpenFileName(path.c_str(), &error));
    if (!file || DGifSlurp(file.get()) != GIF_OK)
        throw std::runtime_error(path.string() + " is not a whole GIF");
    ReadGif gif{.width = file->SWidth, .height = file->SHeight};
    std::vector<std::uint32_t> canvas(
        static_cast<std::size_t>(gif.width) * static_cast<std::size_t>(gif.height));
    for (int i = 0; i < file->ImageCount; ++i) {
        const SavedImage& image = file->SavedImages[i];
        GraphicsControlBlock control{};
        DGifSavedExtensionToGCB(file.get(), i, &control);
        const GifImageDesc& area = image.ImageDesc;
        draw(
            image,
            area.ColorMap ? *area.ColorMap : *file->SColorMap,
            control.TransparentColor,
            gif,
            canvas);
        gif.playsForEver |= saysForEver(extensions(image));
        gif.frames.push_back(
            {area.Left,
             area.Top,
             area.Width,
             area.Height,
             control.DelayTime,
             control.DisposalMode,
             canvas});
    }
    return gif;
}

} // namespace zento::test
