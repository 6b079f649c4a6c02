#include "ZentoCapture/Backends/X11Grabber.h"

#include <sys/mman.h>
#include <unistd.h>

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

} // namespace

bool X11Grabber::SharedPicture::attach(const X11Connection& connection, std::size_t byteCount)
{
    const int file = memfd_create("zento-screen", MFD_CLOEXEC);
    if (file < 0) {
        return false;
    }
    void* memory = MAP_FAILED;
    if (ftruncate(file, static_cast<off_t>(byteCount)) == 0) {
        memory = mmap(nullptr, byteCount, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    }
    if (memory == MAP_FAILED) {
        close(file);
        return false;
    }
    m_data = static_cast<std::uint8_t*>(memory);
    m_byteCount = byteCount;
    m_segment = xcb_generate_id(connection.get());
    // The request takes the file descriptor over. The server forgets the segment with the
    // connection.
    return connection.succeeded(xcb_shm_attach_fd_checked(connection.get(), m_segment, file, 0));
}

X11Grabber::SharedPicture::~SharedPicture()
{
    if (m_data != nullptr) {
        munmap(m_data, m_byteCount);
    }
}

X11Grabber::X11Grabber(const X11Connection& connection, const PixelRect& rect)
    : m_connection(connection)
    , m_rect(rect)
{
    if (!hasSupportedPixels(connection)) {
        throw Error(
            ErrorCode::kNoDisplay, "the display cannot be recorded: it has no 24-bit colour");
    }
    m_sharesMemory = canShareMemory(connection);
    for (Buffer& buffer : m_buffers) {
        m_sharesMemory = m_sharesMemory && buffer.shared.attach(connection, byteCount());
    }
}

std::optional<BgraView> X11Grabber::grab()
{
    Buffer& buffer = m_buffers[m_current];
    if (!(m_sharesMemory ? grabShared(buffer) : grabByReply(buffer))) {
        return {};
    }
    return BgraView{
        .data = buffer.data,
        .width = m_rect.width,
        .height = m_rect.height,
        .stride = static_cast<std::ptrdiff_t>(m_rect.width) * std::ptrdiff_t{kBytesPerPixel}};
}

bool X11Grabber::isUnchanged() const
{
    const Buffer& current = m_buffers[m_current];
    const Buffer& kept = m_buffers[1 - m_current];
    return kept.data != nullptr && std::memcmp(current.data, kept.data, byteCount()) == 0;
}

void X11Grabber::keep()
{
    m_current = 1 - m_current;
}

bool X11Grabber::grabShared(Buffer& buffer)
{
    xcb_connection_t* const connection = m_connection.get();
    const auto request = xcb_shm_get_image(
        connection,
        m_connection.root(),
        static_cast<std::int16_t>(m_rect.x),
        static_cast<std::int16_t>(m_rect.y),
        static_cast<std::uint16_t>(m_rect.width),
        static_cast<std::uint16_t>(m_rect.height),
        kAllPlanes,
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        buffer.shared.segment(),
        0);
    xcb_generic_error_t* error = nullptr;
    const XcbPtr<xcb_shm_get_image_reply_t> reply(
        xcb_shm_get_image_reply(connection, request, &error));
    const XcbPtr<xcb_generic_error_t> ownedError(error);
    buffer.data = buffer.shared.data();
    return reply != nullptr;
}

bool X11Grabber::grabByReply(Buffer& buffer)
{
    xcb_connection_t* const connection = m_connection.get();
    const auto request = xcb_get_image(
        connection,
        XCB_IMAGE_FORMAT_Z_PIXMAP,
        m_connection.root(),
        static_cast<std::int16_t>(m_rect.x),
        static_cast<std::int16_t>(m_rect.y),
        static_cast<std::uint16_t>(m_rect.width),
        static_cast<std::uint16_t>(m_rect.height),
        kAllPlanes);
    xcb_generic_error_t* error = nullptr;
    buffer.reply.reset(xcb_get_image_reply(connection, request, &error));
    const XcbPtr<xcb_generic_error_t> ownedError(error);
    if (!buffer.reply
        || static_cast<std::size_t>(xcb_get_image_data_length(buffer.reply.get())) < byteCount()) {
        return false;
    }
    buffer.data = xcb_get_image_data(buffer.reply.get());
    return true;
}

std::size_t X11Grabber::byteCount() const
{
    return static_cast<std::size_t>(m_rect.width) * static_cast<std::size_t>(m_rect.height)
           * kBytesPerPixel;
}

} // namespace zento
