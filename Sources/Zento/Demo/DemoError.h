#pragma once

/// The codes of the domain "Zento" that setting a stage and performing on it can throw.
namespace zento::DemoErrorCode {
inline constexpr int kProgramMissing = 60; // not installed; the sentence names the package
inline constexpr int kDesktopFailed = 61;  // a program of the desktop did not come up, or died
inline constexpr int kElementMissing = 62; // the script names what no window shows
inline constexpr int kStopped = 63;        // the stop token was set while the stage was being set
inline constexpr int kUntypeable = 64;     // no key of the display types the character
} // namespace zento::DemoErrorCode
