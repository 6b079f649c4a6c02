#include "ZentoMedia/ProResWriter.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/Ffmpeg/BorrowedFrame.h"
#include "ZentoMedia/Ffmpeg/MovieEncoder.h"
#include "ZentoMedia/PicturePool.h"
#include "ZentoMedia/VideoFrame.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <string>
#include <thread>

namespace zento {

using namespace ffmpeg;

namespace {

constexpr int kTimescale = 60000;
constexpr int kLastFrameTicks = 1000;

// Two pictures are in the encoder's hands and one in the caller's; the rest is what a stall of the
// disk or the processor may cost before frames drop: 83 ms at 60 pictures a second.
constexpr int kPictures = 8;

// When no picture has come for that long, those in the encoder's hands are fetched.
constexpr auto kSettleTime = std::chrono::milliseconds(150);

CodecHandle openMovieEncoder(const std::filesystem::path& path, int width, int height, int threads)
{
    auto codec = makePictureEncoder(
        "prores_aw", path, width, height, {1, kTimescale}, ErrorCode::kMovieNotStarted);
    codec->pix_fmt = AV_PIX_FMT_YUV422P10;
    codec->profile = FF_PROFILE_PRORES_LT;
    codec->thread_count = threads;
    codec->thread_type = FF_THREAD_FRAME;
    Options options;
    openEncoder(*codec, path, options, ErrorCode::kMovieNotStarted);
    return codec;
}

void copyPlane(const Plane<const std::uint16_t>& from, const Plane<std::uint16_t>& to)
{
    for (int y = 0; y < to.height; ++y)
        std::copy_n(from.row(y), to.width, to.row(y));
}

} // namespace

struct ProResWriter::State {
    enum class Waiting { Encode, Drop };

    State(const std::filesystem::path& target, int width, int height, int threads);

    CodecHandle makeCodec() const;
    FrameHandle nextFrame();
    void settle();
    void encodeAll();
    void stop(Waiting fate);

    std::filesystem::path path;
    VideoSize size;
    int encoderThreads;
    std::shared_ptr<PicturePool> pool;
    MovieEncoder movie;    // the encoding thread's until it has ended
    bool isSettled = true; // the encoding thread's: the encoder holds nothing back
    std::int64_t lastTicks = -1;

    std::mutex mutex; // guards the two below
    std::deque<FrameHandle> waiting;
    bool isClosing = false;
    std::condition_variable wake;

    std::atomic<bool> isRefusing = false; // closed, or failed
    std::exception_ptr failure;           // the encoding thread's until it has ended
    std::thread encoding;
};

ProResWriter::State::State(const std::filesystem::path& target, int width, int height, int threads)
    : path(target)
    , size{width, height}
    , encoderThreads(threads)
    , pool(std::make_shared<PicturePool>(width, height, kPictures))
    , movie(target, MovieForm::QuickTime, makeCodec(), kLastFrameTicks, ErrorCode::kMovieNotStarted)
{
}

CodecHandle ProResWriter::State::makeCodec() const
{
    return openMovieEncoder(path, size.width, size.height, encoderThreads);
}

/// Gets what the encoder holds back into the file.
void ProResWriter::State::settle()
{
    movie.settle(makeCodec(), ErrorCode::kMovieNotFinished);
    isSettled = true;
}

/// Waits for a frame to encode, and lets the movie settle while none comes. Nothing once the movie
/// is closed and all are encoded.
FrameHandle ProResWriter::State::nextFrame()
{
    std::unique_lock lock(mutex);
    const auto isAwake = [this] { return isClosing || !waiting.empty(); };
    if (!isSettled && !wake.wait_for(lock, kSettleTime, isAwake)) {
        lock.unlock();
        settle();
        lock.lock();
    }
    wake.wait(lock, isAwake);
    if (waiting.empty())
        return {};
    FrameHandle frame = std::move(waiting.front());
    waiting.pop_front();
    isSettled = false;
    return frame;
}

void ProResWriter::State::encodeAll()
{
    pthread_setname_np(pthread_self(), "movie.encode");
    try {
        while (const FrameHandle frame = nextFrame())
            movie.encode(*frame, ErrorCode::kMovieNotFinished);
        movie.drain(ErrorCode::kMovieNotFinished);
    } catch (...) {
        failure = std::current_exception();
        isRefusing = true;
    }
}

/// Ends the encoding thread, after all that waits or before it.
void ProResWriter::State::stop(Waiting fate)
{
    isRefusing = true;
    {
        const std::scoped_lock lock(mutex);
        isClosing = true;
        if (fate == Waiting::Drop)
            waiting.clear();
    }
    wake.notify_one();
    if (encoding.joinable())
        encoding.join();
}

ProResWriter::ProResWriter(
    const std::filesystem::path& path, int width, int height, int encoderThreads)
    : m_state(std::make_unique<State>(path, width, height, encoderThreads))
{
    m_state->encoding = std::thread([state = m_state.get()] { state->encodeAll(); });
}

ProResWriter::~ProResWriter()
{
    m_state->stop(State::Waiting::Drop);
}

bool ProResWriter::isReady() const
{
    return !m_state->isRefusing && !m_state->pool->isEmpty();
}

bool ProResWriter::hasFailed() const
{
    return m_state->isRefusing;
}

std::optional<ProResWriter::Slot> ProResWriter::acquire()
{
    if (m_state->isRefusing)
        return {};
    PicturePool::Loan loan = m_state->pool->borrow();
    if (!loan.samples)
        return {};
    return Slot(std::move(loan.samples), loan.planes);
}

void ProResWriter::submit(Slot slot, double time)
{
    const auto ticks = static_cast<std::int64_t>(std::llround(std::max(time, 0.0) * kTimescale));
    m_state->lastTicks = std::max(ticks, m_state->lastTicks + 1);
    const YuvPlanes<const std::uint16_t> picture = slot.planes();
    FrameHandle frame =
        borrowedFrame(picture, AV_PIX_FMT_YUV422P10, std::move(slot.m_samples), m_state->lastTicks);
    {
        const std::scoped_lock lock(m_state->mutex);
        if (m_state->isRefusing)
            return;
        m_state->waiting.push_back(std::move(frame));
    }
    m_state->wake.notify_one();
}

bool ProResWriter::append(YuvPlanes<const std::uint16_t> picture, double time)
{
    std::optional<Slot> slot = acquire();
    if (!slot)
        return false;
    copyPlane(picture.y, slot->planes().y);
    copyPlane(picture.cb, slot->planes().cb);
    copyPlane(picture.cr, slot->planes().cr);
    submit(std::move(*slot), time);
    return true;
}

void ProResWriter::finish()
{
    m_state->stop(State::Waiting::Encode);
    const bool hasPictures = m_state->movie.framesWritten() > 0;
    try {
        if (hasPictures)
            m_state->movie.close(ErrorCode::kMovieNotFinished);
    } catch (const Error&) {
        // What failed first says more.
        if (!m_state->failure)
            throw;
    }
    if (m_state->failure)
        std::rethrow_exception(m_state->failure);
    if (!hasPictures)
        throw Error(
            ErrorCode::kMovieNotFinished,
            "Could not write " + m_state->path.string() + ": the movie has no pictures");
}

} // namespace zento
