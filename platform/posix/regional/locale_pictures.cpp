#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/posix/regional/locale_pictures_internal.h"
#include "platform/posix/regional/regional_text_internal.h"

namespace orvik::detail {
namespace {

using icu::UnicodeString;

constexpr char kEra = 'g';

struct Piece {
    char letter;         // of a field, as Windows has it; 0 for text
    size_t run;          // the field's length
    UnicodeString text;  // without quotes
};

bool IsLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

// A field of ICU's as Windows spells it. Two-digit years do not occur, since the patterns are made from skeletons with the full
// year.
Piece Field(char16_t letter, size_t run) {
    switch (letter) {
        case u'E':
        case u'c':
            return {'d', run >= 4 ? size_t{4} : size_t{3}, {}};
        case u'L':
        case u'M':
            return {'M', std::min<size_t>(run, 4), {}};
        case u'y':
        case u'u':
            return {'y', 4, {}};
        case u'a':
        case u'b':
        case u'B':
            return {'t', 2, {}};
        case u'k':
            return {'H', run, {}};
        case u'K':
            return {'h', run, {}};
        case u'G':
            return {kEra, run, {}};
        default:
            return {static_cast<char>(letter), run, {}};
    }
}

std::vector<Piece> PiecesOf(const UnicodeString& pattern) {
    std::vector<Piece> pieces;
    const auto add = [&pieces](char16_t c) {
        if (c == u'\u200E' || c == u'\u200F' || c == u'\u061C') return;  // direction marks
        if (c == u'\u202F' || c == u'\u00A0') c = u' ';
        if (c == u'\'') c = u'\u2019';  // pictures have no way to say the plain one
        if (pieces.empty() || pieces.back().letter) pieces.push_back({0, 0, {}});
        pieces.back().text += c;
    };
    bool quoted = false;
    for (int32_t i = 0; i < pattern.length();) {
        const char16_t c = pattern[i];
        int32_t end = i + 1;
        if (c == u'\'' && end < pattern.length() && pattern[end] == u'\'') {
            add(c), ++end;
        } else if (c == u'\'') {
            quoted = !quoted;
        } else if (quoted || !IsLetter(c)) {
            add(c);
        } else {
            while (end < pattern.length() && pattern[end] == c) ++end;
            pieces.push_back(Field(c, static_cast<size_t>(end - i)));
        }
        i = end;
    }
    return pieces;
}

// Without eras; the text that parted one from its neighbour goes with it.
void LeaveOutEras(std::vector<Piece>& pieces) {
    for (size_t i = 0; i < pieces.size();) {
        if (pieces[i].letter != kEra) {
            ++i;
            continue;
        }
        size_t first = i, count = 1;
        if (i + 1 < pieces.size() && !pieces[i + 1].letter)
            ++count;
        else if (i > 0 && !pieces[i - 1].letter)
            --first, ++count;
        const auto at = pieces.begin() + static_cast<std::ptrdiff_t>(first);
        pieces.erase(at, at + static_cast<std::ptrdiff_t>(count));
        i = first;
    }
}

// In quotes where it holds letters.
std::string Quoted(const UnicodeString& text) {
    std::string out;
    bool open = false;
    for (const char c : HouseFromUnicode(text)) {
        if (IsLetter(static_cast<unsigned char>(c)) != open) out += '\'', open = !open;
        out += c;
    }
    return open ? out + '\'' : out;
}

// A run of field letters outside quotes: where it begins and ends.
struct Run {
    size_t begin, end;
};
std::vector<Run> RunsOf(const std::string& picture, const char* letters) {
    std::vector<Run> runs;
    bool quoted = false;
    for (size_t i = 0; i < picture.size();) {
        if (picture[i] == '\'') quoted = !quoted;
        size_t end = i + 1;
        if (!quoted && picture[i] != '\'' && std::strchr(letters, picture[i])) {
            while (end < picture.size() && picture[end] == picture[i]) ++end;
            runs.push_back({i, end});
        }
        i = end;
    }
    return runs;
}

std::string Between(const std::string& picture, const Run& left, const Run& right) {
    return picture.substr(left.end, right.begin - left.end);
}

}  // namespace

std::string DatePicture(const UnicodeString& pattern, const char* separator) {
    std::vector<Piece> pieces = PiecesOf(pattern);
    LeaveOutEras(pieces);
    std::string out;
    for (size_t i = 0; i < pieces.size(); ++i) {
        const Piece& piece = pieces[i];
        if (piece.letter)
            out.append(piece.run, piece.letter);
        else if (CanBeSaid(piece.text))
            out += Quoted(piece.text);
        else if (i > 0 && i + 1 < pieces.size())
            out += separator;
    }
    return out;
}

std::string ClockPicture(const UnicodeString& pattern, bool designatorsUsable) {
    const std::vector<Piece> pieces = PiecesOf(pattern);
    const auto find = [&pieces](const char* letters) {
        return std::find_if(pieces.begin(), pieces.end(),
                            [=](const Piece& p) { return p.letter && std::strchr(letters, p.letter); });
    };
    const auto hour = find("hH"), minute = find("m"), second = find("s"), mark = find("t"), none = pieces.end();
    const bool whole = HouseIsUtf8();  // every letter can be said, and read
    std::string separator = ":";
    if (hour != none && minute == hour + 2 && hour[1].text.length() == 1 && CanBeSaid(hour[1].text) &&
        (!whole || (second == minute + 2 && minute[1].text == hour[1].text))) {
        const char16_t c = hour[1].text[0];
        if (c != u' ' && !IsLetter(c)) separator = HouseFromUnicode(hour[1].text);
    }
    const bool twelve = hour != none && hour->letter == 'h' && mark != none && designatorsUsable;
    const auto run = [none](auto piece) { return piece != none ? std::min<size_t>(piece->run, 2) : 2; };
    std::string out(run(hour), twelve ? 'h' : 'H');
    out += separator;
    out.append(run(minute), 'm');
    out += separator;
    out.append(run(second), 's');
    if (!twelve) return out;
    const bool leads = whole && mark < hour;
    const bool parted = !whole || (leads ? !mark[1].letter : !mark[-1].letter);
    const std::string gap = parted ? " " : "";
    return leads ? "tt" + gap + out : out + gap + "tt";
}

std::string PictureSeparator(const std::string& picture, const char* letters) {
    const std::vector<Run> runs = RunsOf(picture, letters);
    if (runs.size() < 2) return {};
    std::string text = Between(picture, runs[0], runs[1]);
    text.erase(std::remove(text.begin(), text.end(), '\''), text.end());
    return text;
}

std::string ReplacePictureSeparator(const std::string& picture, const char* letters, const std::string& separator) {
    const std::vector<Run> runs = RunsOf(picture, letters);
    if (runs.size() < 2) return picture;
    const std::string old = Between(picture, runs[0], runs[1]);
    if (old.empty()) return picture;
    std::string out = picture;
    for (size_t i = runs.size() - 1; i > 0; --i)
        if (Between(picture, runs[i - 1], runs[i]) == old) out.replace(runs[i - 1].end, old.size(), separator);
    return out;
}

char FirstPictureLetter(const std::string& picture, const char* letters) {
    const std::vector<Run> runs = RunsOf(picture, letters);
    return runs.empty() ? '\0' : picture[runs[0].begin];
}

int PictureRun(const std::string& picture, const char* letters) {
    const std::vector<Run> runs = RunsOf(picture, letters);
    return runs.empty() ? 0 : static_cast<int>(runs[0].end - runs[0].begin);
}

}  // namespace orvik::detail
