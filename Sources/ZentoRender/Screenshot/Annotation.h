#pragma once

#include "ZentoCore/Geometry.h"
#include "ZentoCore/Uuid.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zento {

/// A mark on a screenshot. Places are pixels of the whole image, origin at the top left, y down, so
/// that a mark survives zooming and a change of the crop.
struct Annotation {
    enum class Kind { Arrow, Line, Box, Ellipse, Highlight, Pen, Blur, Spotlight, Badge, Text };

    std::string id = makeUuid();
    Kind kind = Kind::Arrow;
    Vec2 start; // the first corner or end
    Vec2 end;
    std::string text;                 // of `Text`
    std::string colorHex = "#FF3B30"; // read by `BackgroundRenderer::color`
    double width = 1;                 // a multiple of `baseLineWidth`, not pixels
    int number = 1;                   // of `Badge`
    std::vector<Vec2> points;         // of `Pen`

    /// What the mark spans: of a pen with points all of them, else between `start` and `end`.
    Rect rect() const;

    Annotation translated(Vec2 offset) const;
    Annotation scaled(double factor) const; // its places; `width` stays

    /// Whether a click at `p` means this mark. `tolerance` is in image pixels.
    bool hitTest(Vec2 p, double tolerance, double imageHeight) const;

    /// From `p` to the nearest point of a segment.
    static double distance(Vec2 p, Vec2 segmentStart, Vec2 segmentEnd);

    bool operator==(const Annotation&) const = default;
};

/// In the order they are offered.
inline constexpr std::array<Annotation::Kind, 10> kAllAnnotationKinds = {
    Annotation::Kind::Arrow,
    Annotation::Kind::Line,
    Annotation::Kind::Box,
    Annotation::Kind::Ellipse,
    Annotation::Kind::Highlight,
    Annotation::Kind::Pen,
    Annotation::Kind::Blur,
    Annotation::Kind::Spotlight,
    Annotation::Kind::Badge,
    Annotation::Kind::Text};

std::string_view name(Annotation::Kind kind); // "arrow"
std::optional<Annotation::Kind> annotationKind(std::string_view name);

bool isPoint(Annotation::Kind kind); // placed by one point
bool hasEnds(Annotation::Kind kind); // has two ends that can be dragged

/// The line width of a mark of `width` 1, in pixels.
double baseLineWidth(double imageHeight);

/// The size of a text's font in line widths of its mark.
inline constexpr double kTextSize = 7;

/// The radius of a badge in line widths of its mark.
inline constexpr double kBadgeRadius = 3.6;

} // namespace zento
