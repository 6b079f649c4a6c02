#include "ZentoCapture/CameraRecorder.h"

#include "ZentoCapture/Backends/CameraPortal.h"
#include "ZentoCapture/Backends/PipeWireCameraStream.h"
#include "ZentoCapture/Backends/PipeWireNodes.h"
#include "ZentoCapture/CameraClock.h"
#include "ZentoCapture/MonotonicClock.h"
#include "ZentoCore/Error.h"
#include "ZentoMedia/WebcamWriter.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <exception>
#include <iostream>
#include <iterator>
#include <limits>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace zento {

namespace {

constexpr double kTimeToBeShown = 2; // seconds
constexpr std::chrono::milliseconds kLook{20};

PipeWireLoop connected(CameraAccess access)
{
    const int remote = access == CameraAccess::Portal ? openCameraRemote() : -1;
    try {
        return PipeWireLoop("capture.camera", remote);
    } catch (const Error& error) {
        throw Error(ErrorCode::kNoCamera, std::string("no camera: ") + error.what());
    }
}

std::vector<PipeWireNode> camerasOf(PipeWireLoop& loop, const PipeWireNodes& nodes)
{
    const PipeWireLoop::Lock lock(loop);
    std::vector<PipeWireNode> cameras;
    if (loop.roundTrip()) {
        std::ranges::copy_if(nodes.nodes(), std::back_inserter(cameras), &PipeWireNode::isCamera);
    }
    return cameras;
}

/// The camera's id if there is such a one. Throws when there is none at all. What a portal lets be
/// seen comes some moments after the connection.
std::optional<std::string>
chosenCamera(PipeWireLoop& loop, const std::optional<std::string>& deviceID, CameraAccess access)
{
    const PipeWireNodes nodes(loop, [] {});
    const double end = monotonicSeconds() + (access == CameraAccess::Portal ? kTimeToBeShown : 0);
    auto cameras = camerasOf(loop, nodes);
    while (cameras.empty() && monotonicSeconds() < end) {
        std::this_thread::sleep_for(kLook);
        cameras = camerasOf(loop, nodes);
    }
    if (cameras.empty()) {
        throw Error(ErrorCode::kNoCamera, "no camera");
    }
    return knownDevice(cameras, deviceID);
}

/// There must be no old file, also where the recording then fails.
std::filesystem::path removed(std::filesystem::path file)
{
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    return file;
}

} // namespace

struct CameraRecorder::State {
    State(
        const std::filesystem::path& file,
        const std::optional<std::string>& deviceID,
        CameraAccess access);

    void append(const CameraFrame& frame) noexcept;
    void fail(const std::string& reason) noexcept;

    PipeWireLoop loop;
    std::optional<std::string> target;
    WebcamWriter writer;
    CameraClock clock;
    std::atomic<double> startTime = std::numeric_limits<double>::quiet_NaN(); // not yet
    bool hasPicture = false;                    // of the loop's thread, as is the next
    bool hasFailed = false;                     // of the loop's thread
    std::optional<PipeWireCameraStream> stream; // goes first: it feeds the rest
};

CameraRecorder::State::State(
    const std::filesystem::path& file,
    const std::optional<std::string>& deviceID,
    CameraAccess access)
    : loop(connected(access))
    , target(chosenCamera(loop, deviceID, access))
    , writer(removed(file))
{
    stream.emplace(
        loop,
        target,
        [this](const CameraFrame& frame) { append(frame); },
        [this](const std::string& reason) { fail(reason); });
}

void CameraRecorder::State::append(const CameraFrame& frame) noexcept
{
    if (hasFailed) {
        return;
    }
    try {
        const double time = clock.place(frame.stamp, frame.arrival);
        if (writer.append(frame.picture, time)) {
            hasPicture = true;
        }
        if (const auto start = clock.start(); start && hasPicture) {
            startTime = *start;
        }
    } catch (const std::exception&) {
        hasFailed = true;
    }
}

void CameraRecorder::State::fail(const std::string& reason) noexcept
{
    if (!std::exchange(hasFailed, true) && std::isnan(startTime)) {
        std::cerr << "warning: camera unavailable: " << reason << '\n';
    }
}

CameraAccess cameraAccess()
{
    return isSandboxed() ? CameraAccess::Portal : CameraAccess::Direct;
}

CameraRecorder::CameraRecorder(CameraAccess access)
    : m_access(access)
{
}

CameraRecorder::~CameraRecorder() = default;

void CameraRecorder::start(
    const std::filesystem::path& file, const std::optional<std::string>& deviceID)
{
    m_state = std::make_unique<State>(file, deviceID, m_access);
}

std::optional<double> CameraRecorder::stop() noexcept
{
    if (!m_state) {
        return {};
    }
    m_state->stream.reset();
    const auto start = startTime();
    try {
        if (start && !m_state->hasFailed) {
            m_state->writer.finish();
            return start;
        }
    } catch (const std::exception&) {
        m_state->hasFailed = true;
    }
    return {};
}

std::optional<double> CameraRecorder::startTime() const
{
    const double time = m_state ? m_state->startTime.load() : std::nan("");
    return std::isnan(time) ? std::nullopt : std::optional(time);
}

} // namespace zento
