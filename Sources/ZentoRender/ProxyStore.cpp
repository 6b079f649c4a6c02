#include "ZentoRender/ProxyStore.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/ScratchFile.h"
#include "ZentoCore/Uuid.h"
#include "ZentoImaging/Scale.h"
#include "ZentoMedia/ProxyWriter.h"
#include "ZentoMedia/VideoDecoder.h"
#include "ZentoMedia/VideoSeeker.h"
#include "ZentoRender/BoundedQueue.h"
#include "ZentoRender/CanvasPool.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <exception>
#include <future>
#include <optional>
#include <string>
#include <system_error>
#include <thread>
#include <utility>

namespace zento {
namespace {

constexpr double kMostWidth = 960;
constexpr std::size_t kQueuedFrames = 4;
constexpr std::chrono::hours kStaleAfter{1};
constexpr double kSameTime = 2.0 / 60000; // the coarsest clock of the two files

std::filesystem::path proxyPath(const std::filesystem::path& bundle)
{
    return bundle / "proxy.mp4";
}

std::filesystem::path masterPath(const std::filesystem::path& bundle)
{
    return bundle / "screen.mov";
}

bool isStale(const std::filesystem::directory_entry& entry)
{
    const std::string name = entry.path().filename().string();
    if (name == "proxy.tmp.mp4") // of older versions
        return true;
    if (!name.starts_with("proxy") || !name.ends_with(".tmp.mp4"))
        return false;
    std::error_code unreadable;
    const auto written = entry.last_write_time(unreadable);
    return unreadable || std::filesystem::file_time_type::clock::now() - written > kStaleAfter;
}

/// What crashed builds have left. One that another process has under way stays.
void removeStaleFiles(const std::filesystem::path& bundle)
{
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(bundle, ignored))
        if (isStale(entry))
            std::filesystem::remove(entry.path(), ignored);
}

VideoDecoder openMaster(const std::filesystem::path& master)
{
    try {
        return VideoDecoder(master, 2);
    } catch (const Error& error) {
        if (error.domain() == "Zento" && error.code() == ErrorCode::kNoVideoTrack)
            throw Error(ErrorCode::kProxyNoVideoTrack, error.what());
        throw;
    }
}

/// A picture scaled to the proxy's size.
class Reduction {
public:
    explicit Reduction(VideoSize size)
        : m_size(size)
        , m_pool(size.width, size.height)
    {
    }

    /// An unchanged picture is not scaled again.
    std::shared_ptr<const Picture> operator()(const VideoFrame& frame)
    {
        if (!m_last || m_lastIdentity != frame.identity()) {
            m_last = scaled(frame);
            m_lastIdentity = frame.identity();
        }
        return m_last;
    }

private:
    std::shared_ptr<const Picture> scaled(const VideoFrame& frame)
    {
        const auto picture = m_pool.acquire();
        const PicturePlacement placement = {
            .origin = {},
            .scaleX = static_cast<double>(m_size.width) / frame.width(),
            .scaleY = static_cast<double>(m_size.height) / frame.height()};
        const Rect all = {
            0, 0, static_cast<double>(m_size.width), static_cast<double>(m_size.height)};
        if (frame.bitDepth() == 8)
            drawScaled(m_scaler, frame.planes8(), placement, picture->view(), all);
        else
            drawScaled(m_scaler, frame.planes10(), placement, picture->view(), all);
        return picture;
    }

    VideoSize m_size;
    CanvasPool m_pool;
    PictureScaler m_scaler;
    std::shared_ptr<const Picture> m_last;
    std::uint64_t m_lastIdentity = 0;
};

using DecodedFrames = BoundedQueue<VideoFrame>;

void decodeAll(VideoDecoder& decoder, DecodedFrames& out)
{
    pthread_setname_np(pthread_self(), "proxy.decode");
    try {
        while (auto frame = decoder.next())
            if (!out.push(*std::move(frame)))
                return;
        out.close();
    } catch (...) {
        out.abandon();
        throw;
    }
}

void writeProxy(
    const std::filesystem::path& master,
    const std::filesystem::path& to,
    const ProxyStore::Progress& onProgress,
    const std::stop_token& stop)
{
    VideoDecoder decoder = openMaster(master);
    const VideoSize size = proxySize(decoder.naturalSize());
    const double duration = decoder.declaredDuration();
    Reduction reduced(size);
    ProxyWriter writer(to, size.width, size.height);
    DecodedFrames decoded(kQueuedFrames);
    const std::stop_callback wake(stop, [&decoded] { decoded.abandon(); });
    auto decoding = std::async(std::launch::async, [&] { decodeAll(decoder, decoded); });
    try {
        while (const auto frame = decoded.pop()) {
            const auto picture = reduced(*frame);
            writer.append(picture->yuv(), picture, frame->time());
            if (duration > 0)
                onProgress(std::clamp(frame->time() / duration, 0.0, 1.0));
        }
    } catch (...) {
        decoded.abandon();
        throw; // the future waits for its thread
    }
    decoding.get();
    if (stop.stop_requested())
        throw Error(ErrorCode::kCancelled, to.string() + " was cancelled");
    writer.finish();
}

} // namespace

VideoSize proxySize(VideoSize master)
{
    const double scale = std::min(kMostWidth / master.width, 1.0);
    const auto even = [&](int side) { return 2 * static_cast<int>(side * scale * 0.5); };
    return {even(master.width), even(master.height)};
}

bool isProxyOf(const std::filesystem::path& proxy, const std::filesystem::path& master)
{
    try {
        VideoSeeker small(proxy);
        const auto span = small.span();
        if (!span || !small.frame(span->last))
            return false;
        try {
            const VideoSeeker large(master);
            if (small.naturalSize() != proxySize(large.naturalSize()))
                return false;
            const auto whole = large.span(); // a torn master plays up to the tear
            return !whole
                   || (std::abs(span->first - whole->first) <= kSameTime
                       && span->pictures <= whole->pictures && span->last <= whole->last + kSameTime
                       && (span->pictures < whole->pictures
                           || std::abs(span->last - whole->last) <= kSameTime));
        } catch (const Error&) {
            return true;
        }
    } catch (const Error&) {
        return false;
    }
}

/// One build and those who wait for it.
class ProxyStore::Build {
public:
    explicit Build(const std::filesystem::path& bundle)
        : m_thread([this, bundle](const std::stop_token& stop) { run(bundle, stop); })
    {
    }

    int callers = 0; // guarded by the store's lock

    void cancel() { m_thread.request_stop(); }

    /// Until the build or `stop` ends it. Throws the build's failure.
    void wait(const Progress& onProgress, const std::stop_token& stop)
    {
        const std::stop_callback wake(stop, [this] {
            const std::lock_guard lock(m_mutex);
            m_changed.notify_all();
        });
        double told = -1;
        std::unique_lock lock(m_mutex);
        while (!stop.stop_requested()) {
            if (onProgress && m_share > told) { // the last share too
                told = m_share;
                lock.unlock();
                onProgress(told);
                lock.lock();
                continue;
            }
            if (m_isDone)
                break;
            m_changed.wait(lock);
        }
        if (!m_isDone)
            throw Error(ErrorCode::kCancelled, "the preview's preparation was cancelled");
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    void run(const std::filesystem::path& bundle, const std::stop_token& stop)
    {
        pthread_setname_np(pthread_self(), "proxy.build");
        std::exception_ptr failure;
        try {
            build(bundle, stop);
        } catch (...) {
            failure = std::current_exception();
        }
        const std::lock_guard lock(m_mutex);
        m_failure = failure;
        m_isDone = true;
        m_changed.notify_all();
    }

    void build(const std::filesystem::path& bundle, const std::stop_token& stop)
    {
        const std::filesystem::path proxy = proxyPath(bundle);
        std::error_code ignored;
        if (std::filesystem::exists(proxy, ignored) && isProxyOf(proxy, masterPath(bundle)))
            return;
        removeStaleFiles(bundle);
        const ScratchFile part(bundle / ("proxy-" + makeUuid() + ".tmp.mp4"));
        writeProxy(
            masterPath(bundle),
            part.path(),
            [this](double share) {
                const std::lock_guard lock(m_mutex);
                m_share = share;
                m_changed.notify_all();
            },
            stop);
        std::error_code error;
        std::filesystem::rename(part.path(), proxy, error);
        if (error)
            throw systemError("Cannot replace", proxy.string(), error.value());
    }

    std::mutex m_mutex; // guards the four below
    std::condition_variable m_changed;
    double m_share = -1;
    bool m_isDone = false;
    std::exception_ptr m_failure;
    std::jthread m_thread; // ends before what it uses
};

ProxyStore::ProxyStore() = default;
ProxyStore::~ProxyStore() = default;

std::filesystem::path ProxyStore::ensure(
    const std::filesystem::path& bundle, const Progress& onProgress, const std::stop_token& stop)
{
    bool isNew = false;
    const std::shared_ptr<Build> build = join(bundle, isNew);
    try {
        build->wait(isNew ? onProgress : Progress(), stop);
    } catch (...) {
        leave(bundle, build);
        throw;
    }
    leave(bundle, build);
    return proxyPath(bundle);
}

std::shared_ptr<ProxyStore::Build>
ProxyStore::join(const std::filesystem::path& bundle, bool& isNew)
{
    const std::lock_guard lock(m_mutex);
    std::shared_ptr<Build>& build = m_inflight[bundle];
    isNew = build == nullptr;
    if (isNew)
        build = std::make_shared<Build>(bundle);
    ++build->callers;
    return build;
}

/// The last one to leave ends the build, so that the next caller begins anew.
void ProxyStore::leave(const std::filesystem::path& bundle, const std::shared_ptr<Build>& build)
{
    const std::lock_guard lock(m_mutex);
    if (--build->callers > 0)
        return;
    build->cancel();
    const auto found = m_inflight.find(bundle);
    if (found != m_inflight.end() && found->second == build)
        m_inflight.erase(found);
}

} // namespace zento
