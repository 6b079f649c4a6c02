#include "ZentoCapture/ClockedWav.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <system_error>
#include <utility>

namespace zento {

namespace {

/// `length` samples through the same ends.
std::vector<float> stretched(std::span<const float> samples, std::size_t length)
{
    std::vector<float> result(length);
    const double step = static_cast<double>(samples.size() - 1) / static_cast<double>(length - 1);
    for (std::size_t i = 0; i < length; ++i) {
        const double place = static_cast<double>(i) * step;
        const auto left = std::min(static_cast<std::size_t>(place), samples.size() - 2);
        const auto weight = static_cast<float>(place - static_cast<double>(left));
        result[i] = samples[left] + (samples[left + 1] - samples[left]) * weight;
    }
    return result;
}

} // namespace

ClockedWav::ClockedWav(std::filesystem::path path)
    : m_path(std::move(path))
{
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

void ClockedWav::append(const TimedSound& sound) noexcept
{
    if (m_hasFailed || sound.channels.empty() || sound.channels.front().empty()) {
        return;
    }
    try {
        write(sound);
    } catch (const std::exception&) {
        m_hasFailed = true;
    }
}

std::optional<double> ClockedWav::finish() noexcept
{
    try {
        if (m_file && !m_hasFailed) {
            m_file->writer.finish();
        }
    } catch (const std::exception&) {
        m_hasFailed = true;
    }
    m_file.reset();
    return m_hasFailed ? std::nullopt : startTime();
}

std::optional<double> ClockedWav::startTime() const
{
    const double time = m_startTime;
    return std::isnan(time) ? std::nullopt : std::optional(time);
}

void ClockedWav::write(const TimedSound& sound)
{
    if (!m_file) {
        m_file = std::make_unique<File>(
            m_path,
            WavFormat{
                .sampleRate = sound.sampleRate,
                .channelCount = static_cast<int>(sound.channels.size()),
                .samples = WavSamples::Float32});
        m_startTime = sound.time;
    }
    const AudioBlock block = inFormat(sound);
    if (block.front().empty()) {
        return;
    }
    const SoundPlacement placement = m_file->clock.place(sound.time, block.front().size());
    writeSilence(placement.silence);
    m_views.assign(block.begin(), block.end());
    for (std::span<const float>& view : m_views) {
        view = view.subspan(placement.skip);
    }
    writeStretched(m_views, placement.stretch);
}

AudioBlock ClockedWav::inFormat(const TimedSound& sound)
{
    const WavFormat& format = m_file->writer.format();
    const bool isInFormat = sound.sampleRate == format.sampleRate
                            && std::cmp_equal(sound.channels.size(), format.channelCount);
    return isInFormat ? sound.channels
                      : m_file->converter.convert(sound.channels, sound.sampleRate);
}

void ClockedWav::writeSilence(std::size_t length)
{
    const WavFormat& format = m_file->writer.format();
    const std::vector<float> zeros(
        std::min(length, static_cast<std::size_t>(format.sampleRate)), 0.0F);
    while (length > 0) {
        const std::size_t count = std::min(length, zeros.size());
        const std::vector<std::span<const float>> block(
            static_cast<std::size_t>(format.channelCount), std::span(zeros).first(count));
        m_file->writer.append(block);
        length -= count;
    }
}

void ClockedWav::writeStretched(AudioBlock block, int stretch)
{
    const std::size_t length = block.front().size();
    if (length == 0) {
        return;
    }
    const auto wanted = static_cast<std::ptrdiff_t>(length) + stretch;
    if (stretch == 0 || length < 2 || wanted < 2) {
        m_file->writer.append(block);
        return;
    }
    m_planes.clear();
    for (const std::span<const float> channel : block) {
        m_planes.push_back(stretched(channel, static_cast<std::size_t>(wanted)));
    }
    m_views.assign(m_planes.begin(), m_planes.end());
    m_file->writer.append(m_views);
}

} // namespace zento
