#pragma once

#include <string>

namespace zento {

/// A bar on standard error while something long is done; nothing when that is no terminal.
class ProgressBar {
public:
    explicit ProgressBar(std::string label);
    ~ProgressBar(); // leaves an empty line behind
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(double fraction); // [0, 1]; cheap when nothing visible has changed

private:
    std::string m_label;
    bool m_isTerminal = false;
    int m_shownPerMille = -1;
};

} // namespace zento
