#include "ZentoCapture/Backends/X11Pixels.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace zento {

namespace {

constexpr std::size_t kBytesPerPixel = 4;
constexpr std::uint32_t kAllPlanes = 0xFFFFFFFF;

bool hasSupportedPixels(const X11Connection& connection)
{
    const xcb_setup_t* const setup = xcb_get_setup(connection.get());
    const xcb_screen_t& screen = connection.screen();
    bool is32Bit = false;
    for (auto formats = xcb_setup_pixmap_formats_iterator(setup); formats.rem > 0;
         xcb_format_next(&formats)) {
        is32Bit =
            is32Bit
            || (formats.data->depth == screen.root_depth && formats.data->bits_per_pixel == 32);
    }
    bool isBgr = false;
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0;
         xcb_depth_next(&depths)) {
        for (auto visuals = xcb_depth_visuals_iterator(depths.data); visuals.rem > 0;
             xcb_visualtype_next(&visuals)) {
            isBgr = isBgr
                    || (visuals.data->visual_id == screen.root_visual
                        && visuals.data->red_mask == 0xFF0000 && visuals.data->blue_mask == 0xFF);
        }
    }
    return is32Bit && isBgr && setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST;
}

bool canShareMemory(const X11Connection& connection)
{
    const auto* const extension = xcb_get_extension_data(connection.get(), &xcb_shm_id);
    if (extension == nullptr || extension->present == 0) {
        return false;
    }
    const XcbPtr<xcb_shm_query_version_reply_t> version(xcb_shm_query_version_reply(
        connection.get(), xcb_shm_query_version(connection.get()), nullptr));
    return version
           && (version->major_version > 1
               || (version->major_version == 1 && version->minor_version >= 2));
}

std::size_t bytesOf(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * kBytesPerPixel;
}

bool hasColour(std::uint8_t depth)
{
    return depth == 24 || depth == 32;
}

} // namespace

void requireSupportedPixels(const X11Connection& connection)
{
    if (!hasSupportedPixels(connection)) {
        throw Error(
            ErrorCode::kNoDisplay, "the display cannot be recorded: it has no 24-bit colour");
    }
}

X11Pixels::~X11Pixels()
{
    release();
}

void X11Pixels::reserve(int width, int height)
{
    const std::size_t byteCount = bytesOf(width, height);
    if (byteCount <= m_byteCount) {
        return;
    }
    release();
    const int file = memfd_create("zento-screen", MFD_CLOEXEC);
    void* memory = MAP_FAILED;
    if (file >= 0 && ftruncate(file, static_cast<off_t>(byteCount)) == 0) {
        memory = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    if (memory == MAP_FAILED) {
        const int error = errno;
        if (file >= 0) {
            close(file);
        }
        throw systemError("could not make memory for", "the screen's picture", error);
    }
    m_data = static_cast<std::uint8_t*>(memory);
    m_byteCount = byteCount;
    if (!canShareMemory(m_connection)) {
        close(file);
        return;
    }
    // The request takes the file descriptor over.
    const xcb_shm_seg_t segment = xcb_generate_id(m_connection.get());
    if (m_connection.succeeded(xcb_shm_attach_fd_checked(m_connection.get(), segment, file, 0))) {
        m_segment = segment;
    }
}

bool X11Pixels::read(xcb_drawable_t drawable, const PixelRect& rect)
{
    if (rect.isEmpty()) {
        return false;
    }
    reserve(rect.width, rect.height);
    return m_segment != XCB_NONE ? readShared(drawable, rect) : readByReply(drawable, rect);
}

bool X11Pixels::readShared(xcb_drawable_t drawable, const PixelRect& rect)
{
    const auto request = xcb_shm_get_image(
        m_connection.get(),
        drawable,
        static_cast<std::int16_t>(rect.x),
        static_cast<std::int16_t>(rect.y),
        static_cast<std::uint16_t>(rect.width),
        static_cast<std::uint16_t>(rect.height),
        kAllPlanes,
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        m_segment,
        0);
    const auto reply = replyOf(m_connection, xcb_shm_get_image_reply, request);
    return reply && hasColour(reply->depth);
}

bool X11Pixels::readByReply(xcb_drawable_t drawable, const PixelRect& rect)
{
    const auto request = xcb_get_image(
        m_connection.get(),
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        drawable,
        static_cast<std::int16_t>(rect.x),
        static_cast<std::int16_t>(rect.y),
        static_cast<std::uint16_t>(rect.width),
        static_cast<std::uint16_t>(rect.height),
        kAllPlanes);
    const auto reply = replyOf(m_connection, xcb_get_image_reply, request);
    const std::size_t wanted = bytesOf(rect.width, rect.height);
    if (!reply || !hasColour(reply->depth)
        || static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) < wanted) {
        return false;
    }
    std::memcpy(m_data, xcb_get_image_data(reply.get()), wanted);
    return true;
}

void X11Pixels::release()
{
    if (m_segment != XCB_NONE) {
        xcb_shm_detach(m_connection.get(), m_segment);
        m_segment = XCB_NONE;
    }
    if (m_data != nullptr) {
        munmap(m_data, m_byteCount);
        m_data = nullptr;
        m_byteCount = 0;
    }
}

} // namespace zento
