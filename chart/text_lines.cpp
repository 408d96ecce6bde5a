#include "chart/text_lines.h"

#include <algorithm>

#include "platform/house_text.h"
#include "platform/letters.h"

namespace orvik::detail {
namespace {

std::string Ellipsis() {
    std::string text;
    OrvikTextFromUtf8("…", text);
    return text;
}

// How many bytes from the front fit, no letter cut, by halving: widths grow with length.
size_t Fitting(std::string_view text, int width, const std::function<int(std::string_view)>& measure) {
    size_t fits = 0, tooMany = text.size() + 1;
    // No line is worth looking at whole that has far more letters than pixels, with all their marks.
    constexpr size_t kLetter = 16;
    tooMany = std::min(tooMany, kLetter * static_cast<size_t>(std::max(width, 1)) + 2);
    while (tooMany - fits > 1) {
        const size_t middle = fits + (tooMany - fits) / 2;
        (measure(OrvikWholeLetters(text, middle)) <= width ? fits : tooMany) = middle;
    }
    return OrvikWholeLetters(text, fits).size();
}

std::string_view WithoutSpaceBehind(std::string_view text) {
    while (text.ends_with(' ')) text.remove_suffix(1);
    return text;
}

}  // namespace

std::vector<std::string> FitLines(std::string_view text, int width, size_t mostLines,
                                  const std::function<int(std::string_view)>& measure) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        std::string paragraph(text.substr(0, end));
        std::replace(paragraph.begin(), paragraph.end(), '\t', ' ');
        text.remove_prefix(end);
        if (!text.empty()) text.remove_prefix(text.starts_with("\r\n") ? 2 : 1);

        std::string_view rest(paragraph);
        do {
            size_t count = std::max(Fitting(rest, width, measure), OrvikNextLetter(rest, 0));
            if (count < rest.size() && rest[count] != ' ') {
                const size_t space = rest.substr(0, count).rfind(' ');
                if (space != rest.npos && space > 0) count = space;
            }
            std::string line(WithoutSpaceBehind(rest.substr(0, count)));
            rest.remove_prefix(count);
            while (rest.starts_with(' ')) rest.remove_prefix(1);
            if (lines.size() + 1 >= mostLines && (!rest.empty() || !text.empty())) {
                const std::string ellipsis = Ellipsis();
                while (!line.empty() && measure(line + ellipsis) > width) line.resize(OrvikPreviousLetter(line, line.size()));
                lines.push_back(line + ellipsis);
                return lines;
            }
            lines.push_back(std::move(line));
        } while (!rest.empty());
    }
    return lines;
}

}  // namespace orvik::detail
