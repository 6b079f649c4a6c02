#include "ZentoRender/BalancedLines.h"

#include "ZentoCore/Text.h"

#include <algorithm>
#include <cstddef>

namespace zento {
namespace {

/// The words of a text with single spaces between them, and where each of them ends.
struct Words {
    std::string text;
    std::vector<std::size_t> ends;
};

Words wordsOf(std::string_view line)
{
    Words words;
    for (std::size_t begin = 0; begin < line.size();) {
        const std::size_t end = std::min(line.find(' ', begin), line.size());
        if (end > begin) {
            words.text += words.ends.empty() ? "" : " ";
            words.text += line.substr(begin, end - begin);
            words.ends.push_back(words.text.size());
        }
        begin = end + 1;
    }
    return words;
}

} // namespace

// Each word more makes the first line wider and the second one narrower. So the wider of the two is
// narrowest either where the first line catches up with the second, or one word before.
std::vector<std::string> balancedLines(std::string_view text, const Font& font, double widthLimit)
{
    const std::string line = onOneLine(text);
    if (widthLimit >= measureText(line, font).width)
        return {line};
    const Words words = wordsOf(line);
    if (words.ends.size() < 2)
        return {words.text, ""};

    const auto first = [&](std::size_t count) {
        return words.text.substr(0, words.ends[count - 1]);
    };
    const auto second = [&](std::size_t count) {
        return words.text.substr(words.ends[count - 1] + 1);
    };
    const auto firstWidth = [&](std::size_t count) {
        return measureText(first(count), font).width;
    };
    const auto secondWidth = [&](std::size_t count) {
        return measureText(second(count), font).width;
    };

    std::size_t low = 1;
    std::size_t high = words.ends.size() - 1;
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (firstWidth(middle) >= secondWidth(middle))
            high = middle;
        else
            low = middle + 1;
    }
    const auto wider = [&](std::size_t count) {
        return std::max(firstWidth(count), secondWidth(count));
    };
    const std::size_t best = low > 1 && wider(low - 1) <= wider(low) ? low - 1 : low;
    return {first(best), second(best)};
}

} // namespace zento
