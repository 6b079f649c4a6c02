#include "Zento/Commands/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iostream>
#include <utility>

namespace zento {

ProgressBar::ProgressBar(std::string label)
    : m_label(std::move(label))
    , m_isTerminal(::isatty(STDERR_FILENO) == 1)
{
    show(0);
}

ProgressBar::~ProgressBar()
{
    if (m_isTerminal) {
        std::cerr << "\r\033[K" << std::flush;
    }
}

void ProgressBar::show(double fraction)
{
    const int perMille = static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * 1000));
    if (!m_isTerminal || perMille == m_shownPerMille) {
        return;
    }
    m_shownPerMille = perMille;
    constexpr int kWidth = 40; // characters
    const auto filled = static_cast<std::size_t>(perMille * kWidth / 1000);
    std::cerr << '\r' << m_label << " [" << std::string(filled, '#')
              << std::string(kWidth - filled, ' ') << "] " << perMille / 10 << " %" << std::flush;
}

} // namespace zento
