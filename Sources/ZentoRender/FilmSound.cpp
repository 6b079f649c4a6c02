#include "ZentoRender/FilmSound.h"

#include "ZentoCore/Error.h"
#include "ZentoCore/ScratchFile.h"
#include "ZentoRender/AudioMixer.h"

#include <pthread.h>

#include <atomic>
#include <future>
#include <system_error>
#include <utility>

namespace zento {

namespace {

/// A film too short for a sample of sound is its pictures.
void renamePictures(const FilmPaths& paths)
{
    std::error_code error;
    std::filesystem::rename(paths.pictures, paths.film, error);
    if (error)
        throw systemError("Cannot write", paths.film.string(), error.value());
}

} // namespace

FilmPaths FilmPaths::beside(const std::filesystem::path& target, std::filesystem::path film)
{
    return {
        besideTarget(target, ".video.mp4"),
        besideTarget(target, ".soundtrack.m4a"),
        std::move(film)};
}

void writeFilmWithSound(
    const EditPlan& plan,
    double duration,
    const std::filesystem::path& bundle,
    const FilmPaths& paths,
    const WritePictures& writePictures,
    const std::stop_token& stop)
{
    const ScratchFile pictures(paths.pictures);
    const ScratchFile soundtrack(paths.soundtrack);
    std::stop_source either; // the caller's stop, or one of the two has failed
    const std::stop_callback forward(stop, [&either] { either.request_stop(); });
    std::atomic<bool> hasSoundFailed = false;
    auto sound = std::async(std::launch::async, [&] {
        pthread_setname_np(pthread_self(), "export.sound");
        try {
            return AudioMixer::renderSoundtrack(
                plan, duration, bundle, soundtrack.path(), either.get_token());
        } catch (...) {
            hasSoundFailed = true;
            either.request_stop();
            throw;
        }
    });
    try {
        writePictures(pictures.path(), either.get_token());
    } catch (...) {
        if (hasSoundFailed)
            sound.get(); // throws what ended the pictures
        either.request_stop();
        throw; // the future waits for its thread
    }
    if (sound.get())
        AudioMixer::mux(pictures.path(), soundtrack.path(), paths.film, stop);
    else
        renamePictures(paths);
}

} // namespace zento
