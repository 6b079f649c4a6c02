#include "ZentoCapture/Backends/PipeWireCameraFormat.h"

#include "ZentoCapture/Backends/VideoFormatChoice.h"

#include <spa/buffer/buffer.h>
#include <spa/param/param.h>
#include <spa/param/video/format-utils.h>
#include <spa/pod/builder.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zento {

namespace {

struct Form {
    spa_video_format format;
    CameraPixels pixels;
};

constexpr std::array<Form, 14> kForms{
    {{SPA_VIDEO_FORMAT_YUY2, CameraPixels::Yuy2},
     {SPA_VIDEO_FORMAT_UYVY, CameraPixels::Uyvy},
     {SPA_VIDEO_FORMAT_NV12, CameraPixels::Nv12},
     {SPA_VIDEO_FORMAT_I420, CameraPixels::I420},
     {SPA_VIDEO_FORMAT_BGRx, CameraPixels::Bgrx},
     {SPA_VIDEO_FORMAT_BGRA, CameraPixels::Bgrx},
     {SPA_VIDEO_FORMAT_RGBx, CameraPixels::Rgbx},
     {SPA_VIDEO_FORMAT_RGBA, CameraPixels::Rgbx},
     {SPA_VIDEO_FORMAT_xBGR, CameraPixels::Xbgr},
     {SPA_VIDEO_FORMAT_xRGB, CameraPixels::Xrgb},
     {SPA_VIDEO_FORMAT_ARGB, CameraPixels::Xrgb},
     {SPA_VIDEO_FORMAT_BGR, CameraPixels::Bgr},
     {SPA_VIDEO_FORMAT_RGB, CameraPixels::Rgb},
     {SPA_VIDEO_FORMAT_GRAY8, CameraPixels::Grey}}};

enum class Shape { Wanted, Any };

void addSize(spa_pod_builder& builder, Shape shape)
{
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_size, 0);
    if (shape == Shape::Wanted) {
        spa_pod_builder_rectangle(&builder, 1280, 720);
        return;
    }
    spa_pod_frame choice{};
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_rectangle(&builder, 1280, 720);
    spa_pod_builder_rectangle(&builder, 16, 16);
    spa_pod_builder_rectangle(&builder, 8192, 8192);
    spa_pod_builder_pop(&builder, &choice);
}

void addRate(spa_pod_builder& builder, Shape shape)
{
    spa_pod_frame choice{};
    spa_pod_builder_prop(&builder, SPA_FORMAT_VIDEO_framerate, 0);
    spa_pod_builder_push_choice(&builder, &choice, SPA_CHOICE_Range, 0);
    spa_pod_builder_fraction(&builder, 30, 1);
    spa_pod_builder_fraction(&builder, shape == Shape::Wanted ? 24 : 0, 1);
    spa_pod_builder_fraction(&builder, shape == Shape::Wanted ? 60 : 1000, 1);
    spa_pod_builder_pop(&builder, &choice);
}

const spa_pod* wantedFormat(spa_pod_builder& builder, spa_media_subtype subtype, Shape shape)
{
    spa_pod_frame object{};
    spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaType, 0);
    spa_pod_builder_id(&builder, SPA_MEDIA_TYPE_video);
    spa_pod_builder_prop(&builder, SPA_FORMAT_mediaSubtype, 0);
    spa_pod_builder_id(&builder, subtype);
    if (subtype == SPA_MEDIA_SUBTYPE_raw) {
        addFormatChoice(builder, kForms);
    }
    addSize(builder, shape);
    addRate(builder, shape);
    return static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

std::optional<CameraPicture> rawForm(const spa_pod& format)
{
    spa_video_info_raw info{};
    if (spa_format_video_raw_parse(&format, &info) < 0) {
        return {};
    }
    const auto* const known = std::ranges::find(kForms, info.format, &Form::format);
    if (known == kForms.end() || info.size.width == 0 || info.size.height == 0) {
        return {};
    }
    CameraPicture form;
    form.pixels = known->pixels;
    form.width = static_cast<int>(info.size.width);
    form.height = static_cast<int>(info.size.height);
    form.matrix = info.color_matrix == SPA_VIDEO_COLOR_MATRIX_BT709 ? CameraMatrix::Bt709
                                                                    : CameraMatrix::Bt601;
    form.range =
        info.color_range == SPA_VIDEO_COLOR_RANGE_0_255 ? CameraRange::Full : CameraRange::Limited;
    return form;
}

/// Of the packed forms and of the first plane.
int bytesPerPixel(CameraPixels pixels)
{
    switch (pixels) {
    case CameraPixels::Bgrx:
    case CameraPixels::Rgbx:
    case CameraPixels::Xbgr:
    case CameraPixels::Xrgb:
        return 4;
    case CameraPixels::Bgr:
    case CameraPixels::Rgb:
        return 3;
    case CameraPixels::Yuy2:
    case CameraPixels::Uyvy:
        return 2;
    case CameraPixels::Nv12:
    case CameraPixels::I420:
    case CameraPixels::Grey:
    case CameraPixels::Jpeg:
        break;
    }
    return 1;
}

struct PlaneShape {
    int rowBytes = 0;
    int rows = 0;
    int strideDivisor = 1; // of the first plane's stride, where planes share a block
};

/// The planes a picture of that form has.
std::vector<PlaneShape> planeShapes(const CameraPicture& form)
{
    const int halfWidth = (form.width + 1) / 2;
    const int halfHeight = (form.height + 1) / 2;
    std::vector<PlaneShape> shapes{{form.width * bytesPerPixel(form.pixels), form.height, 1}};
    if (form.pixels == CameraPixels::Nv12) {
        shapes.push_back({2 * halfWidth, halfHeight, 1});
    } else if (form.pixels == CameraPixels::I420) {
        shapes.insert(shapes.end(), 2, {halfWidth, halfHeight, 2});
    }
    return shapes;
}

/// The bytes a buffer's block holds.
struct Block {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    int stride = 0; // 0: rows are close together
};

Block blockOf(const spa_data& data)
{
    if (data.data == nullptr) {
        return {};
    }
    const std::uint32_t offset = std::min(data.chunk->offset, data.maxsize);
    return {
        static_cast<const std::uint8_t*>(data.data) + offset,
        std::min(data.chunk->size, data.maxsize - offset),
        data.chunk->stride};
}

} // namespace

std::vector<const spa_pod*> wantedCameraFormats(spa_pod_builder& builder)
{
    return {
        wantedFormat(builder, SPA_MEDIA_SUBTYPE_raw, Shape::Wanted),
        wantedFormat(builder, SPA_MEDIA_SUBTYPE_mjpg, Shape::Wanted),
        wantedFormat(builder, SPA_MEDIA_SUBTYPE_raw, Shape::Any),
        wantedFormat(builder, SPA_MEDIA_SUBTYPE_mjpg, Shape::Any)};
}

std::optional<CameraPicture> cameraFormat(const spa_pod& format)
{
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
    if (spa_format_parse(&format, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video) {
        return {};
    }
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
        CameraPicture form;
        form.pixels = CameraPixels::Jpeg;
        return form;
    }
    return subtype == SPA_MEDIA_SUBTYPE_raw ? rawForm(format) : std::nullopt;
}

std::optional<CameraPicture> cameraPicture(const CameraPicture& form, const spa_buffer& buffer)
{
    if (buffer.n_datas == 0) {
        return {};
    }
    CameraPicture picture = form;
    Block block = blockOf(buffer.datas[0]);
    if (form.pixels == CameraPixels::Jpeg) {
        picture.planes[0].data = block.data;
        picture.size = block.size;
        return block.size > 0 ? std::optional(picture) : std::nullopt;
    }
    const std::vector<PlaneShape> shapes = planeShapes(form);
    const int firstStride = block.stride > 0 ? block.stride : shapes.front().rowBytes;
    const bool sharesBlock = buffer.n_datas < shapes.size();
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        if (i > 0 && !sharesBlock) {
            block = blockOf(buffer.datas[i]);
        }
        const PlaneShape& shape = shapes[i];
        const bool hasStride = !sharesBlock && block.stride > 0;
        const int stride = hasStride ? block.stride : firstStride / shape.strideDivisor;
        const std::size_t step = static_cast<std::size_t>(stride);
        const std::size_t rows = static_cast<std::size_t>(shape.rows);
        const std::size_t needed = step * (rows - 1) + static_cast<std::size_t>(shape.rowBytes);
        if (block.data == nullptr || stride < shape.rowBytes || block.size < needed) {
            return {};
        }
        picture.planes[i] = {block.data, stride};
        if (sharesBlock) {
            const std::size_t used = std::min(step * rows, block.size);
            block.data += used;
            block.size -= used;
        }
    }
    return picture;
}

} // namespace zento
