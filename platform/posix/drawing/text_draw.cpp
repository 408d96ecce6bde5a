#include "platform/posix/drawing/text_draw.h"

#include <algorithm>
#include <cstring>

#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/drawing/shaping_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/text/text_internal.h"

using namespace orvik::detail;

namespace {

constexpr UINT kHorizontal = TA_LEFT | TA_RIGHT | TA_CENTER, kVertical = TA_TOP | TA_BOTTOM | TA_BASELINE;

std::string_view Given(LPCSTR text, int length) {
    if (text == nullptr) return {};
    return {text, length < 0 ? std::strlen(text) : static_cast<size_t>(length)};
}

void FillSolid(Dc& dc, const RECT& rect, COLORREF color) {
    FillLook look;
    look.color = color;
    dc.place.canvas->Fill({&rect, 1}, look, PATCOPY, dc.Clip());
}

// The rectangle of a turned text cell, in the colour behind the text.
void FillTurned(Dc& dc, const FontFace& face, POINT base, int width) {
    const int ascent = face.Font().ascent, descent = face.Font().descent;
    const auto corner = [&](int along, int down) {
        const POINT step = face.Step(along, down);
        return POINT{base.x + step.x, base.y + step.y};
    };
    const POINT corners[] = {corner(0, -ascent), corner(width, -ascent), corner(width, descent), corner(0, descent)};
    const DWORD count = 4;
    FillLook look;
    look.color = dc.state.bkColor;
    dc.place.canvas->Polygons(corners, {&count, 1}, ALTERNATE, look, R2_COPYPEN, dc.Clip());
}

// The lines under and through a text.
void DrawRules(Dc& dc, const FontFace& face, POINT base, int width, const PixelRegion& clip) {
    const TextFont& font = face.Font();
    const int thick = std::max(1, font.pixels / 14);
    const auto rule = [&](int down) {
        FillLook look;
        look.color = dc.state.textColor;
        const POINT a = face.Step(0, down), b = face.Step(width, down), c = face.Step(width, down + thick),
                    d = face.Step(0, down + thick);
        if (font.escapement == 0) {
            const RECT rect = {base.x, base.y + down, base.x + width, base.y + down + thick};
            dc.place.canvas->Fill({&rect, 1}, look, PATCOPY, clip);
            return;
        }
        const POINT corners[] = {{base.x + a.x, base.y + a.y},
                                 {base.x + b.x, base.y + b.y},
                                 {base.x + c.x, base.y + c.y},
                                 {base.x + d.x, base.y + d.y}};
        const DWORD count = 4;
        dc.place.canvas->Polygons(corners, {&count, 1}, ALTERNATE, look, R2_COPYPEN, clip);
    };
    if (font.underline) rule(std::max(1, font.descent / 3));
    if (font.strikeOut) rule(-font.ascent / 3);
}

// Lines of a text as DrawText lays them out: the characters to draw, and which one is underlined.
struct TextLine {
    std::string text;
    size_t mark = std::string::npos;  // of the prefix
};

// One paragraph's text without its prefixes.
TextLine WithoutPrefix(std::string_view text, UINT format) {
    TextLine line;
    for (size_t i = 0; i < text.size(); ++i) {
        if ((format & DT_NOPREFIX) == 0 && text[i] == '&') {
            if (++i == text.size()) break;
            if (text[i] != '&') line.mark = line.text.size();
        }
        line.text += text[i];
    }
    if ((format & DT_HIDEPREFIX) != 0) line.mark = std::string::npos;
    return line;
}

void ExpandTabs(const FontFace& face, TextLine& line) {
    constexpr int kStop = 8;  // average characters
    const int stop = std::max(1, kStop * static_cast<int>(face.Metrics().tmAveCharWidth)), space = std::max(1, face.Advance(' '));
    std::string wide;
    for (size_t i = 0; i < line.text.size(); ++i) {
        if (line.mark == i) line.mark = wide.size();
        if (line.text[i] != '\t') {
            wide += line.text[i];
            continue;
        }
        const int at = face.Extent(wide);
        wide.append(static_cast<size_t>(std::max(1, (at / stop * stop + stop - at + space / 2) / space)), ' ');
    }
    line.text = std::move(wide);
}

// The letters of a text one after the other; no list is made where bytes are letters.
class LetterRow {
public:
    LetterRow(const FontFace& face, std::string_view text) : m_face(face), m_text(text) {
        if (!HouseIsUtf8()) return;
        std::string room;
        const auto plain = face.Plain(text, room);
        m_bytes = plain && plain->data() == text.data() && text.find("\r\n") == text.npos;
        if (!m_bytes) m_letters = face.Letters(text);
    }
    size_t Count() const { return m_bytes ? m_text.size() : m_letters.size(); }
    int Width(size_t letter) const { return m_bytes ? m_face.Advance(m_text[letter]) : m_letters[letter].width; }
    // The first byte; behind the last letter the text's length.
    size_t Begin(size_t letter) const {
        return m_bytes ? letter : letter < m_letters.size() ? m_letters[letter].begin : m_text.size();
    }

private:
    const FontFace& m_face;
    std::string_view m_text;
    bool m_bytes = true;
    std::vector<LetterPlace> m_letters;
};

// Splits a line where words end, so that every piece is at most `width` wide; a longer word stands alone.
void BreakWords(const FontFace& face, const TextLine& whole, int width, std::vector<TextLine>& lines) {
    const LetterRow letters(face, whole.text);
    const std::vector<size_t> breaks = BreaksBeyondBlanks(whole.text);
    size_t begin = 0;
    do {
        size_t end = begin, lastBreak = std::string::npos;
        int extent = 0;
        while (end < letters.Count()) {
            const size_t byte = letters.Begin(end);
            const bool blank = whole.text[byte] == ' ';
            if (!breaks.empty() && !blank && end > begin && std::binary_search(breaks.begin(), breaks.end(), byte))
                lastBreak = end;
            extent += letters.Width(end);
            if (extent > width && lastBreak != std::string::npos) break;
            if (blank && end > begin) lastBreak = end;
            ++end;
        }
        size_t next = end;
        if (end < letters.Count()) {
            end = lastBreak;
            next = end;
            while (next < letters.Count() && whole.text[letters.Begin(next)] == ' ') ++next;
        }
        const size_t from = letters.Begin(begin), to = letters.Begin(end);
        TextLine piece{whole.text.substr(from, to - from)};
        if (whole.mark != std::string::npos && whole.mark >= from && whole.mark < to) piece.mark = whole.mark - from;
        lines.push_back(std::move(piece));
        begin = next;
    } while (begin < letters.Count());
}

std::vector<TextLine> LayOut(const FontFace& face, std::string_view text, int width, UINT format) {
    std::vector<TextLine> lines;
    size_t begin = 0;
    while (begin <= text.size()) {
        size_t end = text.size(), next = text.size() + 1;
        if ((format & DT_SINGLELINE) == 0) {
            const size_t found = text.find_first_of("\r\n", begin);
            if (found != std::string_view::npos) {
                end = found;
                next = found + (text.substr(found, 2) == "\r\n" ? 2 : 1);
            }
        }
        TextLine line = WithoutPrefix(text.substr(begin, end - begin), format);
        if ((format & DT_EXPANDTABS) != 0) ExpandTabs(face, line);
        if ((format & DT_WORDBREAK) != 0 && (format & DT_SINGLELINE) == 0)
            BreakWords(face, line, width, lines);
        else
            lines.push_back(std::move(line));
        begin = next;
    }
    // A line end at the very end begins no further line.
    if (lines.size() > 1 && lines.back().text.empty()) lines.pop_back();
    return lines;
}

void CutWithEllipsis(const FontFace& face, TextLine& line, int width) {
    if (face.Extent(line.text) <= width) return;
    constexpr std::string_view kEllipsis = "...";
    const int room = width - face.Extent(kEllipsis);
    const LetterRow letters(face, line.text);
    int extent = 0;
    size_t count = 0;
    while (count < letters.Count() && extent + letters.Width(count) <= room) extent += letters.Width(count++);
    if (count == 0) count = 1;  // at least one letter shows
    const size_t fit = letters.Begin(count);
    line.text = line.text.substr(0, fit) + std::string(kEllipsis);
    if (line.mark != std::string::npos && line.mark >= fit) line.mark = std::string::npos;
}

// Each letter's width is what its bytes have together.
std::vector<int> OfLetters(const std::vector<LetterPlace>& letters, const int* widths, size_t length) {
    std::vector<int> sums;
    for (size_t i = 0; i < letters.size(); ++i) {
        int64_t sum = 0;
        const size_t end = i + 1 < letters.size() ? letters[i + 1].begin : length;
        for (size_t byte = letters[i].begin; byte < end; ++byte) sum += widths[byte];
        sums.push_back(static_cast<int>(std::clamp<int64_t>(sum, -0x7FFFFFF, 0x7FFFFFF)));
    }
    return sums;
}

}  // namespace

BOOL TextOutA(HDC dc, int x, int y, LPCSTR text, int length) {
    return ExtTextOutA(dc, x, y, 0, nullptr, text, static_cast<UINT>(std::max(length, 0)), nullptr);
}

BOOL ExtTextOutA(HDC dc, int x, int y, UINT options, const RECT* rect, LPCSTR text, UINT length, const int* widths) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    const FontFace& face = found->Face();
    const std::string_view bytes = text != nullptr ? std::string_view(text, length) : std::string_view();
    PixelRegion clip = found->Clip();
    if (rect != nullptr && (options & (ETO_OPAQUE | ETO_CLIPPED)) != 0) {
        const RECT area = Normalised(found->ToCanvas(*rect));
        if ((options & ETO_OPAQUE) != 0) FillSolid(*found, area, found->state.bkColor);
        if ((options & ETO_CLIPPED) != 0) clip.Combine(area, RGN_AND);
    }
    if (bytes.empty()) return TRUE;

    std::string room;
    auto plain = face.Plain(bytes, room);
    if (widths != nullptr && plain && plain->size() != bytes.size()) plain.reset();  // widths are of other bytes
    std::vector<int> offsets;
    std::shared_ptr<const ShapedText> shaped;
    int width = 0;
    if (plain) {
        offsets.resize(plain->size());
        int64_t at = 0;
        for (size_t i = 0; i < plain->size(); ++i) {
            offsets[i] = static_cast<int>(std::clamp<int64_t>(at, -0x7FFFFFF, 0x7FFFFFF));
            at += widths != nullptr ? widths[i] : face.Advance((*plain)[i]);
        }
        width = static_cast<int>(std::clamp<int64_t>(at, -0x7FFFFFF, 0x7FFFFFF));
    } else {
        shaped = face.Shape(bytes);
        if (widths != nullptr)
            shaped = std::make_shared<const ShapedText>(shaped->Spread(OfLetters(shaped->letters, widths, length)));
        width = shaped->width;
    }

    DcState& state = found->state;
    const POINT place = found->ToCanvas((state.textAlign & TA_UPDATECP) != 0 ? state.position : POINT{x, y});
    const UINT horizontal = state.textAlign & kHorizontal, vertical = state.textAlign & kVertical;
    const int along = horizontal == TA_CENTER ? -(width / 2) : horizontal == TA_RIGHT ? -width : 0;
    const int down = vertical == TA_BASELINE ? 0 : vertical == TA_BOTTOM ? -face.Font().descent : face.Font().ascent;
    const POINT step = face.Step(along, down);
    const POINT base = {place.x + step.x, place.y + step.y};
    if ((state.textAlign & TA_UPDATECP) != 0 && horizontal != TA_CENTER) {
        const POINT move = face.Step(horizontal == TA_RIGHT ? -width : width, 0);
        state.position = {state.position.x + move.x, state.position.y + move.y};
    }
    if (state.bkMode == OPAQUE) {
        if (face.Font().escapement == 0) {
            // Where the rectangle is filled already, this is the same colour again.
            const RECT cell = {base.x, base.y - face.Font().ascent, base.x + width, base.y + face.Font().descent};
            FillLook look;
            look.color = state.bkColor;
            found->place.canvas->Fill({&cell, 1}, look, PATCOPY, clip);
        } else {
            FillTurned(*found, face, base, width);
        }
    }
    const std::string utf8 = found->place.canvas->IsPage() ? Utf8FromHouse(bytes) : std::string();
    TextRun run;
    run.font = &face.Font();
    run.face = &face;
    if (plain) run.bytes = *plain;
    run.offsets = offsets;
    run.shaped = shaped.get();
    run.utf8 = utf8;
    run.width = width;
    run.base = base;
    run.align = horizontal;
    run.color = state.textColor;
    found->place.canvas->Text(run, clip);
    if (!found->place.canvas->IsPage()) DrawRules(*found, face, base, width, clip);
    return TRUE;
}

int DrawTextA(HDC dc, LPCSTR text, int length, LPRECT rect, UINT format) {
    const auto found = FindDc(dc);
    if (found == nullptr || rect == nullptr) return 0;
    const FontFace& face = found->Face();
    const int lineHeight = static_cast<int>(face.Metrics().tmHeight) +
                           ((format & DT_EXTERNALLEADING) != 0 ? static_cast<int>(face.Metrics().tmExternalLeading) : 0);
    const int width = rect->right - rect->left;
    const std::string_view given = Given(text, length);
    std::vector<TextLine> lines;
    if (!given.empty()) lines = LayOut(face, given, width, format);
    const int height = lineHeight * static_cast<int>(lines.size());
    if ((format & DT_END_ELLIPSIS) != 0 && !lines.empty())
        for (TextLine& line : lines) CutWithEllipsis(face, line, width);

    int top = rect->top;
    if ((format & DT_SINGLELINE) != 0) {
        if ((format & DT_VCENTER) != 0)
            top += (rect->bottom - rect->top - height) / 2;
        else if ((format & DT_BOTTOM) != 0)
            top = rect->bottom - height;
    }
    if ((format & DT_CALCRECT) != 0) {
        int widest = 0;
        for (const TextLine& line : lines) widest = std::max(widest, face.Extent(line.text));
        rect->right = rect->left + widest;
        rect->bottom = rect->top + height;
        return top + height - rect->top;
    }

    const int saved = SaveDC(dc);
    SetTextAlign(dc, TA_LEFT | TA_TOP);
    if ((format & DT_NOCLIP) == 0) IntersectClipRect(dc, rect->left, rect->top, rect->right, rect->bottom);
    int y = top;
    for (const TextLine& line : lines) {
        const int extent = face.Extent(line.text);
        const int x = (format & DT_CENTER) != 0  ? rect->left + (width - extent) / 2
                      : (format & DT_RIGHT) != 0 ? rect->right - extent
                                                 : rect->left;
        TextOutA(dc, x, y, line.text.data(), static_cast<int>(line.text.size()));
        if (line.mark != std::string::npos) {
            const int under = y + face.Font().ascent + 1;
            for (const LetterPlace& letter : face.Letters(line.text))
                if (letter.begin == line.mark)
                    FillSolid(*found, found->ToCanvas(RECT{x + letter.left, under, x + letter.left + letter.width, under + 1}),
                              found->state.textColor);
        }
        y += lineHeight;
    }
    RestoreDC(dc, saved);
    return top + height - rect->top;
}

BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, int length, SIZE* size) {
    return GetTextExtentExPointA(dc, text, length, 0, nullptr, nullptr, size);
}

BOOL GetTextExtentExPointA(HDC dc, LPCSTR text, int length, int maximum, int* fit, int* widths, SIZE* size) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    if (size == nullptr || length < 0 || (text == nullptr && length > 0) || (fit != nullptr && maximum < -1))
        return Finish(ERROR_INVALID_PARAMETER);
    const FontFace& face = found->Face();
    const std::string_view bytes = length > 0 ? std::string_view(text, static_cast<size_t>(length)) : std::string_view();
    int count = 0;
    if (fit != nullptr || widths != nullptr) {
        const LetterRow letters(face, bytes);
        int extent = 0;
        for (size_t i = 0; i < letters.Count(); ++i) {
            extent += letters.Width(i);
            if (fit != nullptr && maximum >= 0 && extent > maximum) break;
            const int end = static_cast<int>(letters.Begin(i + 1));
            for (; count < end; ++count)
                if (widths != nullptr) widths[count] = extent;
        }
    }
    if (fit != nullptr) *fit = count;
    *size = {face.Extent(bytes), face.Metrics().tmHeight};
    return TRUE;
}

BOOL GetCharWidth32A(HDC dc, UINT first, UINT last, int* widths) {
    const auto found = FindDc(dc);
    if (found == nullptr) return FALSE;
    constexpr UINT kLast = 0x10FFFF;
    if (widths == nullptr || first > last || last > (HouseIsUtf8() ? kLast : 255)) return Finish(ERROR_INVALID_PARAMETER);
    const FontFace& face = found->Face();
    for (UINT code = first; code <= last; ++code) {
        std::string letter;
        if (HouseIsUtf8() && code >= 0x80) AppendUtf8(letter, code);
        widths[code - first] = letter.empty() ? face.Advance(static_cast<char>(code)) : face.Extent(letter);
    }
    return TRUE;
}

BOOL GetTextMetricsA(HDC dc, LPTEXTMETRICA metrics) {
    const auto found = FindDc(dc);
    if (found == nullptr || metrics == nullptr) return FALSE;
    *metrics = found->Face().Metrics();
    return TRUE;
}

int GetTextFaceA(HDC dc, int size, LPSTR name) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    const std::string family = HouseFromUtf8(found->Face().Font().family);
    const int whole = static_cast<int>(family.size()) + 1;
    if (name == nullptr) return whole;
    if (size <= 0) return 0;
    const size_t copied = LetterStart(family, static_cast<size_t>(size - 1));
    std::memcpy(name, family.c_str(), copied);
    name[copied] = 0;
    return static_cast<int>(copied) + 1;
}
