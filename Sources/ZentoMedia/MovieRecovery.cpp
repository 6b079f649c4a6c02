#include "ZentoMedia/MovieRecovery.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/FileDescriptor.h"
#include "ZentoMedia/Ffmpeg/Failure.h"
#include "ZentoMedia/Ffmpeg/GrowingMovie.h"
#include "ZentoMedia/Ffmpeg/Input.h"

extern "C" {
#include <libavutil/intreadwrite.h>
#include <libavutil/mathematics.h>
}

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string>

namespace zento {

using namespace ffmpeg;

namespace {

constexpr std::int64_t kBoxHeaderBytes = 8;

// How long the last picture lasts; the others last until the next.
constexpr AVRational kLastFrame{1, 60};

struct Box {
    std::int64_t size = 0;
    std::array<char, 4> type{};
    bool is(const char (&name)[5]) const { return std::memcmp(type.data(), name, 4) == 0; }
};

Error notRecoverable(const std::filesystem::path& path, const std::string& reason)
{
    return {ErrorCode::kReadingFailed, "Could not read " + path.string() + ": " + reason};
}

Box readBox(int file, std::int64_t offset, const std::filesystem::path& path)
{
    std::array<std::uint8_t, kBoxHeaderBytes> bytes{};
    const ssize_t count = pread(file, bytes.data(), bytes.size(), offset);
    if (count < 0)
        throw systemError("Could not read", path.string(), errno);
    if (count < kBoxHeaderBytes)
        throw notRecoverable(path, "it ends before its first picture");
    Box box{.size = AV_RB32(bytes.data())};
    std::copy_n(bytes.begin() + 4, 4, box.type.begin());
    return box;
}

/// What the boxes of a movie say of its making.
struct BoxForm {
    std::optional<std::int64_t> dataBegin; // of a movie that grows: where its empty index begins
    std::int64_t readableEnd = 0;          // before a box of which the library would make nothing
};

/// The end of the last box, or of the file in a torn box of samples: the whole ones can be read. A
/// torn header of a fragment makes the library refuse the file.
std::int64_t readableEnd(int file, const std::filesystem::path& path)
{
    const std::int64_t size = lseek(file, 0, SEEK_END);
    std::int64_t offset = 0;
    while (offset + kBoxHeaderBytes <= size) {
        const Box box = readBox(file, offset, path);
        if (box.size < kBoxHeaderBytes)
            break;
        if (offset + box.size > size)
            return box.is("mdat") ? size : offset;
        offset += box.size;
    }
    return offset;
}

BoxForm readForm(const std::filesystem::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0)
        throw systemError("Could not read", path.string(), errno);
    const Box first = readBox(file.get(), 0, path);
    if (!first.is("ftyp") || first.size < kBoxHeaderBytes)
        throw notRecoverable(path, "it is no movie");
    BoxForm form;
    if (readBox(file.get(), first.size, path).is("moov")) {
        form.dataBegin = first.size;
        form.readableEnd = readableEnd(file.get(), path);
    }
    return form;
}

InputHandle openUpTo(const std::filesystem::path& path, const BoxForm& form)
{
    return form.dataBegin ? openInput(path, form.readableEnd) : openInput(path);
}

bool isWhole(const AVPacket& packet)
{
    return (packet.flags & AV_PKT_FLAG_CORRUPT) == 0 && packet.size > 0 && packet.pos >= 0;
}

} // namespace

struct MovieRecovery::State {
    State(const std::filesystem::path& target, const std::stop_token& stop);

    void readIndex();
    void readFragments(const std::stop_token& stop);

    std::filesystem::path path;
    BoxForm form;
    InputHandle input;
    AVStream* track = nullptr;
    std::unique_ptr<MovieIndex> index;
    std::int64_t dataEnd = 0;
    std::int64_t frameCount = 0;
    std::int64_t lastTicks = 0;
};

MovieRecovery::State::State(const std::filesystem::path& target, const std::stop_token& stop)
    : path(target)
    , form(readForm(target))
    , input(openUpTo(target, form))
    , track(chooseTrack(*input, isPictures))
{
    if (track == nullptr)
        throw notRecoverable(path, "it holds no pictures");
    if (form.dataBegin)
        readFragments(stop);
    else
        readIndex();
    if (frameCount == 0)
        throw notRecoverable(path, "it holds no whole picture");
}

void MovieRecovery::State::readIndex()
{
    frameCount = avformat_index_get_entries_count(track);
    if (frameCount > 0)
        lastTicks = avformat_index_get_entry(track, static_cast<int>(frameCount) - 1)->timestamp;
}

void MovieRecovery::State::readFragments(const std::stop_token& stop)
{
    index = std::make_unique<MovieIndex>(trackFormat(*track), path, ErrorCode::kMovieNotFinished);
    const std::int64_t lastDuration =
        std::max<std::int64_t>(av_rescale_q(1, kLastFrame, track->time_base), 1);
    const PacketHandle packet = makePacket();
    while (readPacket(*input, track->index, *packet) && isWhole(*packet)) {
        if (stop.stop_requested())
            throw Error(ErrorCode::kCancelled, "stopped");
        const std::int64_t place = packet->pos;
        lastTicks = packet->pts;
        packet->duration = lastDuration;
        dataEnd = place + index->add(*packet, place);
        ++frameCount;
    }
}

MovieRecovery::MovieRecovery(const std::filesystem::path& path, const std::stop_token& stop)
    : m_state(std::make_unique<State>(path, stop))
{
}

MovieRecovery::~MovieRecovery() = default;

bool MovieRecovery::wasFinished() const
{
    return !m_state->form.dataBegin;
}

std::int64_t MovieRecovery::frameCount() const
{
    return m_state->frameCount;
}

double MovieRecovery::lastTime() const
{
    return static_cast<double>(m_state->lastTicks) * av_q2d(m_state->track->time_base);
}

void MovieRecovery::finish()
{
    if (!m_state->form.dataBegin)
        return;
    OutputFile file(m_state->path, m_state->dataEnd);
    seal(file, *m_state->form.dataBegin, m_state->dataEnd, m_state->index->finish());
    file.close();
}

} // namespace zento
