#include "chart/text_lines.h"

#include <algorithm>

namespace orvik::detail {
namespace {

constexpr char kEllipsis = '\x85';  // of Windows-1252

// How many characters from the front fit, by halving: widths grow with length.
size_t Fitting(std::string_view text, int width, const std::function<int(std::string_view)>& measure) {
    size_t fits = 0, tooMany = text.size() + 1;
    // No line is worth looking at whole that has far more characters than pixels.
    tooMany = std::min(tooMany, static_cast<size_t>(std::max(width, 1)) + 2);
    while (tooMany - fits > 1) {
        const size_t middle = fits + (tooMany - fits) / 2;
        (measure(text.substr(0, middle)) <= width ? fits : tooMany) = middle;
    }
    return fits;
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
            size_t count = std::max<size_t>(Fitting(rest, width, measure), std::min<size_t>(rest.size(), 1));
            if (count < rest.size() && rest[count] != ' ') {
                const size_t space = rest.substr(0, count).rfind(' ');
                if (space != rest.npos && space > 0) count = space;
            }
            std::string line(WithoutSpaceBehind(rest.substr(0, count)));
            rest.remove_prefix(count);
            while (rest.starts_with(' ')) rest.remove_prefix(1);
            if (lines.size() + 1 >= mostLines && (!rest.empty() || !text.empty())) {
                line += kEllipsis;
                while (line.size() > 1 && measure(line) > width) line.erase(line.size() - 2, 1);
                lines.push_back(std::move(line));
                return lines;
            }
            lines.push_back(std::move(line));
        } while (!rest.empty());
    }
    return lines;
}

}  // namespace orvik::detail
