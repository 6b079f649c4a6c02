#pragma once

namespace zento {

/// Transcribes narrations of so many minutes as a recording has them, 48 kHz in a WAV file: music
/// alone, and a voice in one of six channels; prints the time, the memory and what was heard.
void measureLongSounds(double minutes);

} // namespace zento
