#include "ZentoIntelligence/PictureRegions.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cstdint>

namespace zento {

namespace {

// Edges are sought in every pixel that is seen, what lies between them in blocks of two by two: a
// quarter of the work, and a region is a hundred pixels large.
constexpr int kBlock = 2;

/// Levels of 8 bits between neighbours that make an edge. A card of #FFFFFF on #F3F4F7 differs by
/// ten from what is behind it; what the recording's codec adds to flat areas stays below six.
constexpr double kEdge = 7;

struct Box {
    cv::Rect rect; // blocks
    double confidence = 0;
};

template <typename Sample>
cv::Mat samplesOf(const Plane<const Sample>& plane)
{
    return {
        plane.height,
        plane.width,
        cv::DataType<Sample>::type,
        const_cast<Sample*>(plane.data), // read only, which the type cannot say
        static_cast<std::size_t>(plane.stride) * sizeof(Sample)};
}

/// 255 where a plane's samples differ from a neighbour's, in the size given.
cv::Mat differences(const cv::Mat& plane, const cv::Size& size, double levels)
{
    cv::Mat scaled = plane;
    if (plane.size() != size)
        cv::resize(plane, scaled, size, 0, 0, cv::INTER_AREA);
    cv::Mat gradient;
    cv::morphologyEx(scaled, gradient, cv::MORPH_GRADIENT, cv::Mat());
    return gradient >= levels;
}

/// 255 in the blocks that hold an edge.
template <typename Sample>
cv::Mat edgesOf(const YuvPlanes<const Sample>& planes, const cv::Size& seen, const cv::Size& blocks)
{
    const double levels = sizeof(Sample) == 1 ? kEdge : 4 * kEdge;
    cv::Mat edges;
    cv::resize(differences(samplesOf(planes.y), seen, levels), edges, blocks, 0, 0, cv::INTER_AREA);
    edges = edges > 0;
    for (const auto& plane : {planes.cb, planes.cr})
        edges |= differences(samplesOf(plane), blocks, levels);
    // Panels end at the picture's own border, too.
    cv::rectangle(edges, {0, 0, blocks.width, blocks.height}, cv::Scalar::all(255));
    return edges;
}

class Outlines {
public:
    explicit Outlines(const cv::Mat& edges)
        : m_picture(0, 0, edges.cols, edges.rows)
    {
        cv::Mat ones;
        cv::dilate(edges, ones, cv::Mat()); // a side may lie beside its edge
        ones /= 255;
        cv::integral(ones, m_sums, CV_32S);
    }

    /// The share of edge along the side of the rectangle that has the least.
    double confidence(const cv::Rect& rect) const
    {
        double least = 1;
        for (const Side side : kSides)
            least = std::min(least, share(lineAt(rect, side)));
        return least;
    }

    /// The rectangle with every side moved inwards to the next line that is an edge: what a codec
    /// leaves around a hard edge is none.
    cv::Rect tightened(cv::Rect rect) const
    {
        constexpr int kMost = 12; // blocks
        constexpr double kIsEdge = 0.5;
        for (const Side side : kSides) {
            cv::Rect moved = rect;
            for (int i = 0; i < kMost && share(lineAt(moved, side)) < kIsEdge; ++i)
                moved = pushed(moved, side);
            if (moved.area() > 0 && share(lineAt(moved, side)) >= kIsEdge)
                rect = moved;
        }
        return rect;
    }

private:
    enum class Side { Top, Bottom, Left, Right };
    static constexpr std::array kSides = {Side::Top, Side::Bottom, Side::Left, Side::Right};

    static cv::Rect lineAt(const cv::Rect& r, Side side)
    {
        switch (side) {
        case Side::Top:
            return {r.x, r.y, r.width, 1};
        case Side::Bottom:
            return {r.x, r.y + r.height - 1, r.width, 1};
        case Side::Left:
            return {r.x, r.y, 1, r.height};
        case Side::Right:
            break;
        }
        return {r.x + r.width - 1, r.y, 1, r.height};
    }

    static cv::Rect pushed(const cv::Rect& r, Side side)
    {
        switch (side) {
        case Side::Top:
            return {r.x, r.y + 1, r.width, r.height - 1};
        case Side::Bottom:
            return {r.x, r.y, r.width, r.height - 1};
        case Side::Left:
            return {r.x + 1, r.y, r.width - 1, r.height};
        case Side::Right:
            break;
        }
        return {r.x, r.y, r.width - 1, r.height};
    }

    double share(cv::Rect r) const
    {
        r &= m_picture;
        if (r.area() <= 0)
            return 0;
        const int sum = m_sums.at<int>(r.y, r.x) + m_sums.at<int>(r.y + r.height, r.x + r.width)
                        - m_sums.at<int>(r.y, r.x + r.width) - m_sums.at<int>(r.y + r.height, r.x);
        return static_cast<double>(sum) / r.area();
    }

    cv::Rect m_picture;
    cv::Mat m_sums;
};

bool isLargeEnough(const cv::Rect& rect, const cv::Size& picture)
{
    const int shorter = std::min(rect.width, rect.height);
    const int longer = std::max(rect.width, rect.height);
    return shorter >= PictureRegions::kLeastSide * std::min(picture.width, picture.height)
           && shorter >= PictureRegions::kLeastAspect * longer;
}

enum class Kind {
    Flat,     // between edges
    Detailed, // of edges that touch one another
};

/// The boxes of the connected areas of a mask.
void collect(const cv::Mat& mask, Kind kind, const Outlines& outlines, std::vector<Box>& boxes)
{
    constexpr double kLeastFill = 0.12; // a stripe between others is no panel
    cv::Mat labels;
    cv::Mat stats;
    cv::Mat centroids;
    const int count = cv::connectedComponentsWithStats(
        mask, labels, stats, centroids, kind == Kind::Flat ? 4 : 8, CV_32S);
    for (int i = 1; i < count; ++i) { // 0 is what the mask leaves out
        const int* at = stats.ptr<int>(i);
        cv::Rect rect(
            at[cv::CC_STAT_LEFT],
            at[cv::CC_STAT_TOP],
            at[cv::CC_STAT_WIDTH],
            at[cv::CC_STAT_HEIGHT]);
        if (!isLargeEnough(rect, mask.size()))
            continue;
        if (kind == Kind::Detailed)
            rect = outlines.tightened(rect);
        else if (at[cv::CC_STAT_AREA] < kLeastFill * rect.area())
            continue;
        const double confidence = outlines.confidence(rect);
        if (confidence >= PictureRegions::kLeastConfidence)
            boxes.push_back({rect, confidence});
    }
}

/// Two outlines of one thing, its inner and its outer one.
bool areSame(const Rect& a, const Rect& b)
{
    constexpr double kSame = 0.9; // intersection over union
    const double w = std::min(a.x + a.w, b.x + b.w) - std::max(a.x, b.x);
    const double h = std::min(a.y + a.h, b.y + b.h) - std::max(a.y, b.y);
    const double common = std::max(w, 0.0) * std::max(h, 0.0);
    return common > kSame * (a.w * a.h + b.w * b.h - common);
}

Rect inPixels(const cv::Rect& blocks)
{
    return {
        static_cast<double>(kBlock) * blocks.x,
        static_cast<double>(kBlock) * blocks.y,
        static_cast<double>(kBlock) * blocks.width,
        static_cast<double>(kBlock) * blocks.height};
}

} // namespace

PictureRegions::PictureRegions(const VideoFrame& picture, const VideoSize& seen)
    : m_size(seen)
{
    const cv::Size size(seen.width, seen.height);
    const cv::Size blocks((seen.width + 1) / kBlock, (seen.height + 1) / kBlock);
    const cv::Mat edges = picture.bitDepth() == 8 ? edgesOf(picture.planes8(), size, blocks)
                                                  : edgesOf(picture.planes10(), size, blocks);
    const Outlines outlines(edges);
    std::vector<Box> boxes;
    collect(edges == 0, Kind::Flat, outlines, boxes);
    collect(edges, Kind::Detailed, outlines, boxes);
    std::ranges::stable_sort(boxes, std::ranges::greater{}, &Box::confidence);
    for (const Box& box : boxes)
        m_regions.push_back(inPixels(box.rect));
}

std::vector<Rect> PictureRegions::around(Vec2 place) const
{
    std::vector<Rect> chosen;
    for (const Rect& rect : m_regions) {
        const bool isKnown =
            std::ranges::any_of(chosen, [&](const Rect& other) { return areSame(other, rect); });
        if (chosen.size() < kMost && !isKnown && holds(rect, place))
            chosen.push_back(rect);
    }
    return chosen;
}

bool holds(const Rect& rect, Vec2 place)
{
    constexpr double kAllowance = 0.02;
    const Rect grown = rect.insetBy(kAllowance);
    return place.x >= grown.x && place.x <= grown.x + grown.w && place.y >= grown.y
           && place.y <= grown.y + grown.h;
}

} // namespace zento
