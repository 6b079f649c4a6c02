#pragma once

#include "ZentoCore/Analyses.h"
#include "ZentoCore/SessionBundle.h"
#include "ZentoMedia/VideoFrame.h"

#include <filesystem>
#include <optional>
#include <span>
#include <stop_token>
#include <vector>

/// Finds what was clicked by looking at the picture, for clicks that the accessibility layer could
/// not explain: the smallest plausible rectangle around the click in the frame just before it.
///
/// Threading: any thread; calls block.
namespace zento::FrameAnalyzer {

/// The bundle's hints: read where they are, else made and kept in the bundle, also when none was
/// found. Without a click that needs one no movie is opened and nothing is kept; nor once `stop` is
/// requested. Throws `Error` for a movie that cannot be opened.
std::vector<FramingHint>
loadOrAnalyze(const SessionBundle& bundle, const std::stop_token& stop = {});

/// The clicks without an element that can serve as a region, in order.
std::vector<InputEvent> needyClicks(const std::vector<InputEvent>& events, const SessionMeta& meta);

/// A frame that cannot be read, or shows nothing around the click, gives no hint. About 30 ms a
/// click at 1080p; larger pictures are looked at in the size they are seen in. Throws as above.
std::vector<FramingHint> analyze(
    const std::filesystem::path& movie,
    const SessionMeta& meta,
    std::span<const InputEvent> clicks,
    const std::stop_token& stop = {});

/// The smallest of the candidates that hold the place and cover 1.5 to 60 % of the frame, limits
/// included; the first of equally large ones.
std::optional<Rect>
bestRegion(Vec2 place, std::span<const Rect> candidates, const VideoSize& frameSize);

} // namespace zento::FrameAnalyzer
