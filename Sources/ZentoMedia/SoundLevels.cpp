#include "ZentoMedia/SoundLevels.h"

#include "ZentoCore/Error.h"
#include "ZentoMedia/AudioReader.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zento {

std::vector<float> soundLevels(
    const std::filesystem::path& file, double duration, int bins, const std::stop_token& stop)
{
    if (bins <= 0 || !(duration > 0))
        return {};
    std::vector<float> levels(static_cast<std::size_t>(bins));
    AudioReader reader(file);
    const double binsPerSample = bins / (duration * reader.sampleRate());
    std::size_t first = 0; // sample of the block
    while (const auto block = reader.next()) {
        if (stop.stop_requested())
            throw Error(ErrorCode::kCancelled, "reading " + file.string() + " was cancelled");
        const std::size_t length = block->front().size();
        for (const auto& channel : *block) {
            for (std::size_t i = 0; i < length; ++i) {
                const auto bin =
                    static_cast<std::size_t>(static_cast<double>(first + i) * binsPerSample);
                if (bin < levels.size())
                    levels[bin] = std::max(levels[bin], std::min(std::abs(channel[i]), 1.0F));
            }
        }
        first += length;
    }
    return levels;
}

} // namespace zento
