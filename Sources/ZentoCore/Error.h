#pragma once

#include <stdexcept>
#include <string>

namespace zento {

/// What a function could not do. `what()` is one sentence a user can read.
///
/// Our own failures carry the domain "Zento" and a small code that is unique per cause; failures of
/// the system carry the domain "errno" and its number.
class Error : public std::runtime_error {
public:
    Error(int code, const std::string& description)
        : Error("Zento", code, description)
    {
    }

    Error(std::string domain, int code, const std::string& description)
        : std::runtime_error(description)
        , m_domain(std::move(domain))
        , m_code(code)
    {
    }

    const std::string& domain() const { return m_domain; }
    int code() const { return m_code; }

private:
    std::string m_domain;
    int m_code = 0;
};

/// The codes of the domain "Zento".
namespace ErrorCode {
inline constexpr int kUndecodable = 0; // a document that is not what it should be
inline constexpr int kNoVideoTrack = 1;
inline constexpr int kReadingFailed = 2;
inline constexpr int kWriterNotStarted = 3;
inline constexpr int kNoPicturePool = 4;
inline constexpr int kNoPicture = 5;
inline constexpr int kAppendRefused = 6;
inline constexpr int kFilmNotFinished = 7;
inline constexpr int kNoDefinedPlan = 8;   // inputs that contradict each other
inline constexpr int kCancelled = 9;       // a long job whose owner asked it to stop
inline constexpr int kNoMonoBuffer = 10;   // no memory for the sound to analyse
inline constexpr int kNoSoundBuffer = 11;  // no memory for the sound to mix
inline constexpr int kNoStereoBuffer = 12; // sound that cannot be converted to the mix's format
inline constexpr int kTrackMissing = 13;   // of the two a film is joined of
inline constexpr int kJoinFailed = 14;     // tracks the film's container cannot hold
inline constexpr int kNoDisplay = 20;
inline constexpr int kMovieNotStarted = 21;
inline constexpr int kMovieNotFinished = 22;
inline constexpr int kNoFrames = 23;
inline constexpr int kWindowGone = 24;
inline constexpr int kNoInput = 25;
inline constexpr int kDiskFull = 26;     // almost, while recording
inline constexpr int kPortalSilent = 27; // no such service, or none that answers
inline constexpr int kPortalFailed = 28; // what the desktop's portal refuses
inline constexpr int kPortalDenied = 29; // by the user, in the desktop's own dialog
inline constexpr int kNoMicrophone = 30;
inline constexpr int kNoCamera = 31;
inline constexpr int kCameraRefused = 32;       // the camera or its node will not be used
inline constexpr int kCameraFormatRefused = 33; // it offers pictures in no form we read
inline constexpr int kCameraNotWritten = 34;
// The GIF's share their numbers with those of the microphone and the camera.
inline constexpr int kGifNoVideoTrack = 30; // of the film a GIF is made from
inline constexpr int kGifNotRead = 31;
inline constexpr int kGifNotStarted = 32;
inline constexpr int kGifNotFinished = 33;
inline constexpr int kGifNoFrames = 34;
inline constexpr int kGifFrame = 35;          // a frame that could not become a picture of the GIF
inline constexpr int kProxyNoVideoTrack = 50; // in the recording a proxy is made of
inline constexpr int kProxyNotStarted = 51;
inline constexpr int kProxyNotFinished = 52;
// A download's failure shares its number with the proxy's.
inline constexpr int kDownloadFailed = 50; // a server that refuses a file, or sends what is none
inline constexpr int kNetworkFailed = 53;
inline constexpr int kNoSpeechModel = 54;
inline constexpr int kNoLanguageModel = 55; // nobody serves one
inline constexpr int kNoUsableAnswer = 56;  // of a language model
inline constexpr int kProgramMissing = 60;  // not installed; the sentence names the package
inline constexpr int kDesktopFailed = 61; // a program of a private desktop did not come up, or died
inline constexpr int kElementMissing = 62; // no window shows what the demo's script names
inline constexpr int kDemoStopped = 63;    // by the user, before its stage was set
inline constexpr int kTrashFailed = 70;    // what the trash would not take
inline constexpr int kNotRunning = 71;     // what a command would talk to
inline constexpr int kUntypeable = 64;     // no key of the display's layout types the character
} // namespace ErrorCode

/// An `Error` of the domain "errno": "{action} {path}: {the system's text}".
Error systemError(const std::string& action, const std::string& path, int errorNumber);

} // namespace zento
