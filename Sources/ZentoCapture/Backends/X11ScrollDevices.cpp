#include "ZentoCapture/Backends/X11ScrollDevices.h"

namespace zento {

namespace {

constexpr double kFractionUnit = 4294967296.0; // 2^32
constexpr unsigned kBitsPerWord = 32;

double number(const xcb_input_fp3232_t& value)
{
    return value.integral + value.frac / kFractionUnit;
}

} // namespace

X11ScrollDevices::X11ScrollDevices(const X11Connection& connection)
{
    const XcbPtr<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(
        connection.get(),
        xcb_input_xi_query_device(connection.get(), XCB_INPUT_DEVICE_ALL),
        nullptr));
    if (!reply) {
        return;
    }
    for (auto devices = xcb_input_xi_query_device_infos_iterator(reply.get()); devices.rem > 0;
         xcb_input_xi_device_info_next(&devices)) {
        for (auto classes = xcb_input_xi_device_info_classes_iterator(devices.data);
             classes.rem > 0;
             xcb_input_device_class_next(&classes)) {
            if (classes.data->type != XCB_INPUT_DEVICE_CLASS_TYPE_SCROLL) {
                continue;
            }
            const auto& scroll = *reinterpret_cast<const xcb_input_scroll_class_t*>(classes.data);
            if (const double increment = number(scroll.increment); increment != 0) {
                m_axes[devices.data->deviceid].push_back(
                    {.valuator = scroll.number,
                     .direction = scroll.scroll_type == XCB_INPUT_SCROLL_TYPE_HORIZONTAL
                                      ? Direction::Horizontal
                                      : Direction::Vertical,
                     .increment = increment});
            }
        }
    }
}

Vec2 X11ScrollDevices::notches(const xcb_input_raw_motion_event_t& event) const
{
    const auto device = m_axes.find(event.sourceid);
    if (device == m_axes.end()) {
        return {};
    }
    const std::uint32_t* const mask = xcb_input_raw_button_press_valuator_mask(&event);
    const xcb_input_fp3232_t* value = xcb_input_raw_button_press_axisvalues_raw(&event);
    Vec2 notches;
    for (unsigned valuator = 0; valuator < kBitsPerWord * event.valuators_len; ++valuator) {
        if ((mask[valuator / kBitsPerWord] >> (valuator % kBitsPerWord) & 1U) == 0) {
            continue;
        }
        for (const Axis& axis : device->second) {
            if (axis.valuator == valuator) {
                double& sum = axis.direction == Direction::Vertical ? notches.y : notches.x;
                sum -= number(*value) / axis.increment;
            }
        }
        ++value; // only the valuators of the mask have a value
    }
    return notches;
}

} // namespace zento
