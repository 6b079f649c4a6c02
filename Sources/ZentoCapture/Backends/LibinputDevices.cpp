#include "ZentoCapture/Backends/DeviceKeys.h"
#include "ZentoCapture/Backends/InputDevices.h"
#include "ZentoCapture/DesktopServices.h"

#include <fcntl.h>
#include <libinput.h>
#include <libudev.h>
#include <linux/input-event-codes.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <optional>
#include <utility>

namespace zento {

namespace {

constexpr double kMicrosecond = 1e-6;
constexpr double kUnitsPerNotch = 120;
// What a finger on a pad moves is told in steps of a mouse's wheel, of 15 degrees each.
constexpr double kFingerUnitsPerNotch = 15;

struct Unref {
    void operator()(udev* context) const noexcept { udev_unref(context); }
    void operator()(libinput* context) const noexcept { libinput_unref(context); }
    void operator()(libinput_event* event) const noexcept { libinput_event_destroy(event); }
};

int openDevice(const char* path, int flags, void* /*nothing*/)
{
    const int writable = O_RDWR | O_WRONLY;
    const int file = ::open(path, (flags & ~writable) | O_RDONLY | O_CLOEXEC); // NOLINT: as in C
    return file < 0 ? -errno : file;
}

void closeDevice(int file, void* /*nothing*/)
{
    ::close(file);
}

constexpr libinput_interface kFiles{.open_restricted = openDevice, .close_restricted = closeDevice};

/// What the library thinks of devices that may not be read is known already.
void ignore(
    libinput* /*context*/,
    libinput_log_priority /*priority*/,
    const char* /*format*/,
    va_list /*words*/)
{
}

class LibinputDevices final : public InputDevices {
public:
    LibinputDevices(
        std::unique_ptr<udev, Unref> udevContext, std::unique_ptr<libinput, Unref> context)
        : m_udev(std::move(udevContext))
        , m_context(std::move(context))
    {
    }

    int fileDescriptor() const override { return libinput_get_fd(m_context.get()); }

    void read(const Handler& handler) override
    {
        libinput_dispatch(m_context.get());
        while (const std::unique_ptr<libinput_event, Unref> event{
            libinput_get_event(m_context.get())}) {
            if (const auto input = inputOf(*event)) {
                handler(*input);
            }
        }
    }

private:
    std::optional<RawInput> inputOf(libinput_event& event)
    {
        switch (libinput_event_get_type(&event)) {
        case LIBINPUT_EVENT_KEYBOARD_KEY:
            return key(*libinput_event_get_keyboard_event(&event));
        case LIBINPUT_EVENT_POINTER_BUTTON:
            return button(*libinput_event_get_pointer_event(&event));
        case LIBINPUT_EVENT_POINTER_SCROLL_WHEEL:
            return wheel(*libinput_event_get_pointer_event(&event));
        case LIBINPUT_EVENT_POINTER_SCROLL_FINGER:
        case LIBINPUT_EVENT_POINTER_SCROLL_CONTINUOUS:
            return finger(*libinput_event_get_pointer_event(&event));
        default:
            return {};
        }
    }

    std::optional<RawInput> key(libinput_event_keyboard& event)
    {
        const bool isDown =
            libinput_event_keyboard_get_key_state(&event) == LIBINPUT_KEY_STATE_PRESSED;
        const auto result = m_keys.handle(
            libinput_event_keyboard_get_key(&event),
            isDown ? DeviceKeys::Press::Down : DeviceKeys::Press::Up);
        if (!result.isRecord) {
            return {};
        }
        return RawInput{
            .type = RawInputType::KeyDown,
            .time = timeOf(libinput_event_keyboard_get_time_usec(&event)),
            .keyCode = result.keyCode,
            .flags = result.flags};
    }

    std::optional<RawInput> button(libinput_event_pointer& event) const
    {
        const std::uint32_t button = libinput_event_pointer_get_button(&event);
        const bool isDown =
            libinput_event_pointer_get_button_state(&event) == LIBINPUT_BUTTON_STATE_PRESSED;
        RawInput input{
            .time = timeOf(libinput_event_pointer_get_time_usec(&event)), .flags = m_keys.flags()};
        if (button == BTN_LEFT) {
            input.type = isDown ? RawInputType::LeftDown : RawInputType::LeftUp;
            return input;
        }
        if (button == BTN_RIGHT && isDown) {
            input.type = RawInputType::RightDown;
            return input;
        }
        return {};
    }

    std::optional<RawInput> wheel(libinput_event_pointer& event) const
    {
        const auto notches = [&](libinput_pointer_axis axis) {
            return libinput_event_pointer_has_axis(&event, axis) == 0
                       ? 0
                       : libinput_event_pointer_get_scroll_value_v120(&event, axis)
                             / kUnitsPerNotch;
        };
        return scroll(event, notches);
    }

    std::optional<RawInput> finger(libinput_event_pointer& event) const
    {
        const auto notches = [&](libinput_pointer_axis axis) {
            return libinput_event_pointer_has_axis(&event, axis) == 0
                       ? 0
                       : libinput_event_pointer_get_scroll_value(&event, axis)
                             / kFingerUnitsPerNotch;
        };
        return scroll(event, notches);
    }

    /// The library counts down and right as positive.
    template <typename Notches>
    std::optional<RawInput> scroll(libinput_event_pointer& event, Notches notches) const
    {
        const Vec2 turned{
            -notches(LIBINPUT_POINTER_AXIS_SCROLL_HORIZONTAL) * kPointsPerNotch,
            -notches(LIBINPUT_POINTER_AXIS_SCROLL_VERTICAL) * kPointsPerNotch};
        if (turned == Vec2{}) {
            return {}; // the end of a finger's movement
        }
        return RawInput{
            .type = RawInputType::Scroll,
            .time = timeOf(libinput_event_pointer_get_time_usec(&event)),
            .flags = m_keys.flags(),
            .scroll = turned};
    }

    static double timeOf(std::uint64_t microseconds)
    {
        return static_cast<double>(microseconds) * kMicrosecond;
    }

    std::unique_ptr<udev, Unref> m_udev;
    std::unique_ptr<libinput, Unref> m_context;
    DeviceKeys m_keys;
};

} // namespace

std::unique_ptr<InputDevices> openInputDevices()
{
    if (deviceInputAccess() == InputAccess::None) {
        return nullptr;
    }
    std::unique_ptr<udev, Unref> udevContext(udev_new());
    if (!udevContext) {
        return nullptr;
    }
    std::unique_ptr<libinput, Unref> context(
        libinput_udev_create_context(&kFiles, nullptr, udevContext.get()));
    if (!context) {
        return nullptr;
    }
    libinput_log_set_handler(context.get(), ignore);
    if (libinput_udev_assign_seat(context.get(), "seat0") != 0) {
        return nullptr;
    }
    return std::make_unique<LibinputDevices>(std::move(udevContext), std::move(context));
}

} // namespace zento
