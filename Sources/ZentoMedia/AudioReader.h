#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace zento {

/// A stretch of sound: the samples of each channel, all of one length, full scale at ±1.
using AudioBlock = std::span<const std::span<const float>>;

/// What the channels of a file become.
enum class ChannelMix {
    AsStored,
    /// Left and right. One channel goes to both at full level; two stay as they are, whatever they
    /// are called; more are mixed down by their places, scaled so that no peak rises. Channels
    /// whose places nobody knows go left and right in turn.
    Stereo,
};

/// Bytes that come one after the other from somewhere else than a file: fills `into` from its start
/// and gives how many came, 0 at the end. May block and throw.
using ByteSource = std::function<std::size_t(std::span<char> into)>;

/// Reads the sound of a file's first audio track, forwards, in any format the media library opens,
/// also that of a movie.
///
/// A silence the format itself declares as an encoder's lead-in is left out. Where packets are
/// damaged the sound goes on with the next good one; a torn file plays up to the tear.
///
/// Threading: used by one thread at a time.
class AudioReader {
public:
    /// `sampleRate`: what the sound is converted to, [1, ∞); the file's own if absent.
    ///
    /// Throws `Error`: the system's error for a file that cannot be opened; code `kReadingFailed`
    /// for anything that holds no sound or none that can be read; code `kNoStereoBuffer` for
    /// sound that cannot be converted. A track of no samples is no failure.
    explicit AudioReader(
        const std::filesystem::path& path,
        ChannelMix mix = ChannelMix::AsStored,
        std::optional<int> sampleRate = std::nullopt);

    /// The sound of bytes as they come, in any format that can be read forwards. `name` is for
    /// messages. What `source` throws while the sound is opened is thrown on; later it ends the
    /// sound.
    AudioReader(
        ByteSource source,
        const std::string& name,
        ChannelMix mix = ChannelMix::AsStored,
        std::optional<int> sampleRate = std::nullopt);
    ~AudioReader();
    AudioReader(AudioReader&&) noexcept;
    AudioReader& operator=(AudioReader&&) noexcept;

    /// Of what `next` gives. 0 only for an empty track that does not say.
    int sampleRate() const;
    int channelCount() const;

    /// About how many samples a channel has, by what the file says of itself and how large it is;
    /// 0 if it does not say. Good for setting memory aside.
    std::size_t expectedLength() const;

    /// The next stretch, never of no length, a packet's worth. Nothing at the end. It is good until
    /// the next call.
    std::optional<AudioBlock> next();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento
