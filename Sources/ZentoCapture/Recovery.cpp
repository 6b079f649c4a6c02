#include "ZentoCapture/Recovery.h"

#include "ZentoCapture/BundleCompletion.h"
#include "ZentoCapture/Journal.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileIO.h"
#include "ZentoMedia/MovieRecovery.h"
#include "ZentoMedia/WavRecovery.h"

#include <cerrno>
#include <map>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

namespace zento {

namespace {

Error notRecoverable(const std::filesystem::path& bundle, const std::string& reason)
{
    return {ErrorCode::kNotRecoverable, bundle.string() + " cannot be recovered: " + reason};
}

/// For a folder without a journal.
Recovery completeBundle(const std::filesystem::path& bundle)
{
    try {
        return {.duration = SessionBundle::load(bundle).meta.duration};
    } catch (const Error&) {
        throw notRecoverable(bundle, "it has no journal of a recording");
    }
}

FileDescriptor held(const std::filesystem::path& bundle)
{
    auto journal = lockJournal(bundle);
    if (!journal) {
        throw Error(
            ErrorCode::kStillRecording,
            bundle.string() + " is still being recorded, or recovered by another program");
    }
    return *std::move(journal);
}

JournalContents journalOf(const std::filesystem::path& bundle)
{
    const std::string text = readFile(journalURL(bundle));
    try {
        JournalContents contents = decodeJournal(text);
        if (contents.epoch) {
            return contents;
        }
    } catch (const Error& error) {
        throw notRecoverable(bundle, std::string("of its journal, ") + error.what());
    }
    throw notRecoverable(bundle, "it ends before its first picture");
}

/// Whether the file is there, and whole now.
bool finishSideFile(const std::filesystem::path& path, SideFile file, const std::stop_token& stop)
{
    try {
        if (file != SideFile::Webcam) {
            return finishWav(path);
        }
        MovieRecovery(path, stop).finish();
        return true;
    } catch (const Error& error) {
        if (error.code() == ErrorCode::kCancelled) {
            throw;
        }
        return false;
    }
}

std::optional<double>& offsetOf(SideFile file, SessionMeta& meta)
{
    switch (file) {
    case SideFile::Narration:
        return meta.narrationOffset;
    case SideFile::Webcam:
        return meta.webcamOffset;
    case SideFile::SystemAudio:
        break;
    }
    return meta.systemAudioOffset;
}

/// Keeps the side files that are of use, as the metadata then says, and removes the others.
void finishSideFiles(
    const std::filesystem::path& bundle,
    const std::map<SideFile, double>& starts,
    double epoch,
    SessionMeta& meta,
    Recovery& recovery,
    const std::stop_token& stop)
{
    for (const SideFile file : {SideFile::Narration, SideFile::Webcam, SideFile::SystemAudio}) {
        const auto path = bundle / fileName(file);
        const auto start = starts.find(file);
        if (start != starts.end() && finishSideFile(path, file, stop)) {
            offsetOf(file, meta) = start->second - epoch;
            continue;
        }
        std::error_code ignored;
        if (std::filesystem::remove(path, ignored)) {
            recovery.lost.push_back(file);
        }
    }
}

/// A name that the user gave it between two recoveries, of which the first was cut short.
std::optional<std::string> givenTitle(const SessionBundle& bundle)
{
    try {
        return parseFile(bundle.metaURL(), decodeMeta).title;
    } catch (const Error&) {
        return {};
    }
}

std::vector<InputEvent> finishedEvents(const std::vector<InputEvent>& events, double epoch)
{
    EventLog log;
    for (const InputEvent& event : events) {
        log.append(event);
    }
    return log.finished(epoch);
}

} // namespace

bool isCutShort(const std::filesystem::path& bundle)
{
    try {
        return lockJournal(bundle).has_value();
    } catch (const Error&) {
        return false;
    }
}

Recovery recover(const std::filesystem::path& bundle, const std::stop_token& stop)
{
    if (std::error_code ignored; !std::filesystem::is_directory(bundle, ignored)) {
        throw systemError("cannot read", bundle.string(), ENOENT);
    }
    if (std::error_code ignored; !std::filesystem::exists(journalURL(bundle), ignored)) {
        return completeBundle(bundle);
    }
    const FileDescriptor hold = held(bundle);
    const JournalContents journal = journalOf(bundle);
    const double epoch = journal.epoch.value_or(0); // it has one
    SessionBundle result{.url = bundle, .meta = journal.meta};
    MovieRecovery movie(result.screenMovieURL(), stop);
    movie.finish();

    Recovery recovery{
        .outcome = Recovery::Outcome::Completed,
        .frameCount = movie.frameCount(),
        .duration = movie.lastTime()};
    result.meta.duration = recovery.duration;
    finishSideFiles(bundle, journal.starts, epoch, result.meta, recovery, stop);
    result.meta.title = givenTitle(result);
    result.events = finishedEvents(journal.events, epoch);
    giveRoomBack(hold);
    complete(result);
    removeJournal(bundle);
    return recovery;
}

} // namespace zento
