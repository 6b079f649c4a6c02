#include "ZentoCapture/Backends/ScreenStreamFormat.h"

#include "ZentoCapture/Backends/VideoFormatChoice.h"

#include <spa/buffer/buffer.h>
#include <spa/buffer/meta.h>
#include <spa/param/buffers.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

#include <algorithm>
#include <array>

namespace zento {

namespace {

struct Form {
    spa_video_format format = SPA_VIDEO_FORMAT_UNKNOWN;
    PixelOrder order;
};

/// Ten bits come last: they are read when nothing else is offered.
constexpr std::array<Form, 18> kForms{
    {{SPA_VIDEO_FORMAT_BGRx, {4, 0, 1, 2}},
     {SPA_VIDEO_FORMAT_BGRA, {4, 0, 1, 2}},
     {SPA_VIDEO_FORMAT_RGBx, {4, 2, 1, 0}},
     {SPA_VIDEO_FORMAT_RGBA, {4, 2, 1, 0}},
     {SPA_VIDEO_FORMAT_xRGB, {4, 3, 2, 1}},
     {SPA_VIDEO_FORMAT_ARGB, {4, 3, 2, 1}},
     {SPA_VIDEO_FORMAT_xBGR, {4, 1, 2, 3}},
     {SPA_VIDEO_FORMAT_ABGR, {4, 1, 2, 3}},
     {SPA_VIDEO_FORMAT_BGR, {3, 0, 1, 2}},
     {SPA_VIDEO_FORMAT_RGB, {3, 2, 1, 0}},
     {SPA_VIDEO_FORMAT_xRGB_210LE, {4, 0, 10, 20, 10}},
     {SPA_VIDEO_FORMAT_ARGB_210LE, {4, 0, 10, 20, 10}},
     {SPA_VIDEO_FORMAT_xBGR_210LE, {4, 20, 10, 0, 10}},
     {SPA_VIDEO_FORMAT_ABGR_210LE, {4, 20, 10, 0, 10}},
     {SPA_VIDEO_FORMAT_RGBx_102LE, {4, 2, 12, 22, 10}},
     {SPA_VIDEO_FORMAT_RGBA_102LE, {4, 2, 12, 22, 10}},
     {SPA_VIDEO_FORMAT_BGRx_102LE, {4, 22, 12, 2, 10}},
     {SPA_VIDEO_FORMAT_BGRA_102LE, {4, 22, 12, 2, 10}}}};

constexpr std::int64_t kLinear = 0; // DRM_FORMAT_MOD_LINEAR
constexpr unsigned kHighestRate = 60;
constexpr int kDamageRegions = 16;

enum class Memory : unsigned char { Ordinary, OfCard };

void addSize(spa_pod_builder& builder)
{
    spa_pod_frame choice{};
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_rectangle(&builder, 1920, 1080);
    spa_pod_builder_rectangle(&builder, 1, 1);
    spa_pod_builder_rectangle(&builder, 16384, 16384);
    spa_pod_builder_pop(&builder, &choice);
}

/// A rate that varies, with a highest one.
void addRate(spa_pod_builder& builder)
{
    spa_pod_frame choice{};
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_fraction(&builder, 0, 1);
    spa_pod_builder_fraction(&builder, 0, 1);
    spa_pod_builder_fraction(&builder, 1000, 1);
    spa_pod_builder_pop(&builder, &choice);
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_maxFramerate, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_fraction(&builder, kHighestRate, 1);
    spa_pod_builder_fraction(&builder, 1, 1);
    spa_pod_builder_fraction(&builder, kHighestRate, 1);
    spa_pod_builder_pop(&builder, &choice);
}

const spa_pod* wantedFormat(spa_pod_builder& builder, Memory memory)
{
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_SUBTYPE_raw);
    addFormatChoice(builder, kForms);
    if (memory == Memory::OfCard) {
        spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_modifier, SPA_POD_PROP_FLAG_MANDATORY);
        spa_pod_builder_long(&builder, kLinear);
    }
    addSize(builder);
    addRate(builder);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

struct Bytes {
    int usual = 0;
    int least = 0;
    int most = 0;
};

const spa_pod* wantedMeta(spa_pod_builder& builder, spa_meta_type type, Bytes bytes)
{
    spa_pod_frame object{};
    spa_pod_frame choice{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta);
    spa_pod_builder_prop(&builder, SPA_PARAM_META_type, 0);
    spa_pod_builder_id(&builder, type);
    spa_pod_builder_prop(&builder, SPA_PARAM_META_size, 0);
    if (bytes.least == bytes.most) {
        spa_pod_builder_int(&builder, bytes.usual);
    } else {
        spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
        spa_pod_builder_int(&builder, bytes.usual);
        spa_pod_builder_int(&builder, bytes.least);
        spa_pod_builder_int(&builder, bytes.most);
        spa_pod_builder_pop(&builder, &choice);
    }
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

/// Of a pointer whose picture has that side.
constexpr int pointerBytes(int side)
{
    return static_cast<int>(sizeof(spa_meta_cursor) + sizeof(spa_meta_bitmap)) + side * side * 4;
}

template <typename Meta>
constexpr Bytes exactly(int count = 1)
{
    const int bytes = static_cast<int>(sizeof(Meta)) * count;
    return {bytes, bytes, bytes};
}

} // namespace

std::vector<const spa_pod*> wantedScreenFormats(spa_pod_builder& builder)
{
    return {wantedFormat(builder, Memory::Ordinary), wantedFormat(builder, Memory::OfCard)};
}

std::vector<const spa_pod*> wantedScreenBuffers(spa_pod_builder& builder, const ScreenForm& form)
{
    spa_pod_frame object{};
    spa_pod_frame choice{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers);
    spa_pod_builder_prop(&builder, SPA_PARAM_BUFFERS_dataType, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Flags, 0);
    spa_pod_builder_int(
        &builder,
        form.isLinear ? 1 << SPA_DATA_DmaBuf : (1 << SPA_DATA_MemPtr) | (1 << SPA_DATA_MemFd));
    spa_pod_builder_pop(&builder, &choice);
    const auto* const buffers = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
    // A desktop that sends larger pointers than it is allowed to sends none at all, and 384 pixels
    // are not too large for one of them.
    return {
        buffers,
        wantedMeta(builder, SPA_META_Header, exactly<spa_meta_header>()),
        wantedMeta(
            builder, SPA_META_Cursor, {pointerBytes(384), pointerBytes(1), pointerBytes(1024)}),
        wantedMeta(builder, SPA_META_VideoCrop, exactly<spa_meta_region>()),
        wantedMeta(
            builder,
            SPA_META_VideoDamage,
            {exactly<spa_meta_region>(kDamageRegions).usual,
             exactly<spa_meta_region>().usual,
             exactly<spa_meta_region>(kDamageRegions).usual})};
}

std::optional<ScreenForm> screenForm(const spa_pod& format)
{
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    spa_video_info_raw info{};
    if (spa_format_parse(&format, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video
        || subtype != SPA_MEDIA_SUBTYPE_raw || spa_format_video_raw_parse(&format, &info) < 0) {
        return {};
    }
    const auto* const known = std::ranges::find(kForms, info.format, &Form::format);
    if (known == kForms.end() || info.size.width == 0 || info.size.height == 0) {
        return {};
    }
    const bool hasModifier =
        spa_pod_find_prop(&format, nullptr, SPA_FORMAT_VIDEO_modifier) != nullptr;
    return ScreenForm{
        .width = static_cast<int>(info.size.width),
        .height = static_cast<int>(info.size.height),
        .order = known->order,
        .isLinear = hasModifier};
}

} // namespace zento
