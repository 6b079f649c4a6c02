#include "ZentoImaging/GifFile.h"

#include "ZentoCore/Error.h"
#include "ZentoImaging/CanvasState.hpp"

#include <gif_lib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <system_error>
#include <utility>

namespace zento {

namespace {

using File = std::unique_ptr<std::FILE, CallOnDelete<std::fclose>>;
using ColorMap = std::unique_ptr<ColorMapObject, CallOnDelete<GifFreeMapObject>>;

constexpr int kColorBits = 8;
constexpr int kDoNotDispose = 1;

int writeBytes(GifFileType* gif, const GifByteType* bytes, int count)
{
    auto* file = static_cast<std::FILE*>(gif->UserData);
    return static_cast<int>(std::fwrite(bytes, 1, static_cast<std::size_t>(count), file));
}

/// With the index for "unchanged", and filled up to a power of two as the format wants it.
ColorMap colorMap(std::span<const PackedRgb> palette)
{
    const std::size_t size = std::bit_ceil(std::max<std::size_t>(palette.size() + 1, 4));
    std::array<GifColorType, 256> colors{};
    for (std::size_t i = 0; i < palette.size(); ++i) {
        const auto byte = [&](int shift) { return static_cast<GifByteType>(palette[i] >> shift); };
        colors[i] = {byte(16), byte(8), byte(0)};
    }
    ColorMap map(GifMakeMapObject(static_cast<int>(size), colors.data()));
    if (!map) {
        throw std::bad_alloc();
    }
    return map;
}

} // namespace

struct GifFile::State {
    std::filesystem::path path;
    std::size_t colors = 0; // of the animation's palette
    File file;
    GifFileType* gif = nullptr; // closed by `closeGif`

    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { closeGif(); }

    int closeGif()
    {
        int error = 0;
        GifFileType* closed = std::exchange(gif, nullptr);
        return closed == nullptr ? GIF_OK : EGifCloseFile(closed, &error);
    }

    [[noreturn]] void fail(int code, const std::string& what, int systemError) const
    {
        const std::string reason =
            systemError != 0 ? std::string(": ") + std::generic_category().message(systemError)
                             : "";
        throw Error(code, path.string() + ": " + what + reason);
    }

    /// Runs one call of the library.
    template <typename Call>
    void write(int code, const std::string& what, Call call)
    {
        errno = 0;
        if (call() != GIF_OK) {
            fail(code, what, errno);
        }
    }

    void begin(int width, int height, std::span<const PackedRgb> palette)
    {
        colors = palette.size();
        const ColorMap map = colorMap(palette);
        EGifSetGifVersion(gif, true);
        write(ErrorCode::kGifNotStarted, kNotStarted, [&] {
            return EGifPutScreenDesc(gif, width, height, kColorBits, 0, map.get());
        });
        write(ErrorCode::kGifNotStarted, kNotStarted, [&] { return putLoop(); });
    }

    /// The extension that makes an animation begin anew, for ever.
    int putLoop() const
    {
        constexpr std::array<GifByteType, 3> kForEver{1, 0, 0};
        const bool done =
            EGifPutExtensionLeader(gif, APPLICATION_EXT_FUNC_CODE) == GIF_OK
            && EGifPutExtensionBlock(gif, 11, "NETSCAPE2.0") == GIF_OK
            && EGifPutExtensionBlock(gif, static_cast<int>(kForEver.size()), kForEver.data())
                   == GIF_OK
            && EGifPutExtensionTrailer(gif) == GIF_OK;
        return done ? GIF_OK : GIF_ERROR;
    }

    int putControl(const GifFrame& frame) const
    {
        const GraphicsControlBlock control{
            .DisposalMode = kDoNotDispose,
            .UserInputFlag = false,
            .DelayTime = frame.delay,
            .TransparentColor =
                static_cast<int>(frame.palette.empty() ? colors : frame.palette.size())};
        std::array<GifByteType, 4> bytes{};
        EGifGCBToExtension(&control, bytes.data());
        return EGifPutExtension(
            gif, GRAPHICS_EXT_FUNC_CODE, static_cast<int>(bytes.size()), bytes.data());
    }

    /// In blocks of up to 255 bytes, their length before them; none ends the image.
    int putImage(const LzwImage& image) const
    {
        int codeSize = 0;
        std::array<GifByteType, 256> block{};
        for (std::size_t at = 0; at < image.bytes.size(); at += block[0]) {
            block[0] =
                static_cast<GifByteType>(std::min<std::size_t>(image.bytes.size() - at, 255));
            std::memcpy(block.data() + 1, image.bytes.data() + at, block[0]);
            const bool isFirst = at == 0;
            const int done = isFirst ? EGifPutCode(gif, codeSize, block.data())
                                     : EGifPutCodeNext(gif, block.data());
            if (done != GIF_OK) {
                return GIF_ERROR;
            }
        }
        return EGifPutCodeNext(gif, nullptr);
    }

    static constexpr const char* kNotStarted = "the GIF could not be created";
    static constexpr const char* kNoFrame = "a frame could not be written";
    static constexpr const char* kNotFinished = "could not finalize GIF";
};

GifFile::GifFile(
    const std::filesystem::path& path, int width, int height, std::span<const PackedRgb> palette)
    : m_state(std::make_unique<State>())
{
    m_state->path = path;
    m_state->file.reset(std::fopen(path.c_str(), "wb"));
    if (!m_state->file) {
        m_state->fail(ErrorCode::kGifNotStarted, State::kNotStarted, errno);
    }
    int error = 0;
    m_state->gif = EGifOpen(m_state->file.get(), writeBytes, &error);
    if (m_state->gif == nullptr) {
        throw std::bad_alloc();
    }
    m_state->begin(width, height, palette);
}

GifFile::~GifFile() = default;
GifFile::GifFile(GifFile&&) noexcept = default;
GifFile& GifFile::operator=(GifFile&&) noexcept = default;

void GifFile::add(const GifFrame& frame)
{
    assert(
        frame.image.indices.size()
        == static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height));
    const ColorMap map = frame.palette.empty() ? nullptr : colorMap(frame.palette);
    State& s = *m_state;
    const auto write = [&](auto call) { s.write(ErrorCode::kGifFrame, State::kNoFrame, call); };
    write([&] { return s.putControl(frame); });
    write([&] {
        return EGifPutImageDesc(
            s.gif, frame.x, frame.y, frame.width, frame.height, /*GifInterlace=*/false, map.get());
    });
    write([&] { return s.putImage(frame.image); });
}

void GifFile::finish()
{
    State& s = *m_state;
    s.write(ErrorCode::kGifNotFinished, State::kNotFinished, [&] { return s.closeGif(); });
    s.write(ErrorCode::kGifNotFinished, State::kNotFinished, [&] {
        return std::fclose(s.file.release()) == 0 ? GIF_OK : GIF_ERROR;
    });
}

} // namespace zento
