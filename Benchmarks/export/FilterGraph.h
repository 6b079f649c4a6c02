#pragma once

#include "ChildRun.h"
#include "Scenes.h"

#include <filesystem>

namespace zento::bench {

/// Which graph, from the cheapest to the one nearest to our picture.
enum class Graph {
    Still,       // the camera rests; stills are read once
    StillReread, // the same as it is usually written, with -loop 1: stills are read for each frame
    WholePixels, // zoompan moves inside a card whose own place stays; all steps are whole pixels
    SubPixel,    // perspective, cubic, moves the whole card as our camera does
};

/// The film of `stillPlan` or `movingPlan`, 1080p, as ffmpeg makes it with a graph of its filters
/// and the same encoder settings: the recording is scaled to the card, gets rounded corners through
/// a mask, lies over a picture of background and shadow, and a pointer that wanders lies on top.
/// The shadow stays where it is.
///
/// `folder` receives what it reads and the film.
Cost runFilterGraph(
    const SessionBundle& bundle, Stretch stretch, Graph graph, const std::filesystem::path& folder);

} // namespace zento::bench
