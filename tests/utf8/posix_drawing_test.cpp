// Text in the letters of any script, drawn and measured in a process that chose UTF-8. The tests' own font has Latin, Greek,
// Cyrillic, Hebrew and Arabic letters; what it lacks comes from wherever the machine has it, or is a box.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <thread>

#include "platform/house_text_internal.h"
#include "platform/picture.h"
#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/drawing/shaping_internal.h"
#include "platform/posix/drawing/text_places_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "tests/platform/png_reader.h"
#include "tests/support/test_folder.h"

using namespace orvik::detail;
namespace fs = std::filesystem;

namespace {
constexpr const char* kTexts[] = {"Plain [V], AV fi",
                                  "\u00C5ngstr\u00F6m \u00B0C \u00B5V \u20AC",
                                  "\u0391\u03BD\u03C4\u03AF\u03C3\u03C4\u03B1\u03C3\u03B7 [k\u03A9]",
                                  "\u6E29\u5EA6 [\u2103]",
                                  "CO\u2082 [ppm]",
                                  "\u0645\u0642\u0627\u0648\u0645\u0629",
                                  "\u092A\u094D\u0930\u0924\u093F\u0930\u094B\u0927",
                                  "cafe\u0301 + x\u0302",
                                  "\U0001F321 \U0001F600 \U0001F1F8\U0001F1EA",
                                  "R = \u0645\u0642\u0627\u0648\u0645\u0629 12 k\u03A9",
                                  "\u05E9\u05DC\u05D5\u05DD (abc)",
                                  "\u0644\u0627",  // one glyph for two letters
                                  "nobody's: \U0003FFFD\U0003FFFC",
                                  "bytes: \xB5m \xFF k\u03A9 \xCE",
                                  "tab\tk\u03A9\r\nline"};
int SizeOf(std::string_view text) { return static_cast<int>(text.size()); }

class Utf8Drawing : public testing::Test, protected TestFolder {
protected:
    static constexpr int kWidth = 400, kHeight = 40;

    Utf8Drawing() {
        m_dc = CreateCompatibleDC(nullptr);
        Use(-16);
    }
    ~Utf8Drawing() override {
        DeleteDC(m_dc);
        DeleteObject(m_font);
    }

    void Use(int height, int escapement = 0) {
        const HFONT font = CreateFontA(height, 0, escapement, escapement, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, "DejaVu Sans");
        SelectObject(m_dc, font);
        if (m_font != nullptr) DeleteObject(m_font);
        m_font = font;
    }
    int Extent(std::string_view text) const {
        SIZE size{};
        EXPECT_TRUE(GetTextExtentPoint32A(m_dc, text.data(), SizeOf(text), &size));
        EXPECT_EQ(m_line == 0 ? size.cy : m_line, size.cy) << "as high as every other: " << text;
        m_line = size.cy;
        return size.cx;
    }
    // The file of a picture with the font in it.
    template <class Drawing>
    std::string Draw(const std::string& name, Drawing draw, int width = kWidth, int height = kHeight) const {
        const HDC dc = OrvikBeginPicture(Path(name).c_str(), width, height);
        SelectObject(dc, m_font);
        draw(dc);
        EXPECT_TRUE(OrvikEndPicture(dc, TRUE)) << name << ": " << GetLastError();
        // ORVIK_PICTURES keeps what was drawn, for whoever wants to look at it.
        if (const char* keep = std::getenv("ORVIK_PICTURES"))
            fs::copy_file(Path(name), fs::path(keep) / name, fs::copy_options::overwrite_existing);
        return Read(name);
    }
    std::vector<uint32_t> Pixels(const std::string& text, int x = 10, const int* widths = nullptr) const {
        return ReadPng(
                   Draw("t.png",
                        [&](HDC dc) { ExtTextOutA(dc, x, 5, 0, nullptr, text.data(), static_cast<UINT>(text.size()), widths); }))
            .pixels;
    }

    HDC m_dc;
    HFONT m_font = nullptr;
    mutable LONG m_line = 0;
};

TEST_F(Utf8Drawing, PlainLettersLookTheSameByEitherWay) {
    for (const int height : {-9, -12, -13, -16, -24, -40, 20}) {
        Use(height);
        m_line = 0;
        const FontFace& face = FindDc(m_dc)->Face();
        for (char c = ' '; c < 0x7F; ++c)
            EXPECT_EQ(face.Advance(c), face.Shape(std::string(1, c))->width) << c << " at " << height;
        EXPECT_EQ(Extent("AV fi ") + Extent("\u03A9"), Extent("AV fi \u03A9")) << height;
    }
    Use(-16);
    m_line = 0;
    const std::vector<uint32_t> alone = Pixels("AV"), together = Pixels("AV\u0394");
    const int width = Extent("AV");
    int marks = 0;
    for (int i = 0; i < kWidth * kHeight; ++i) {
        if (i % kWidth >= 10 + width) continue;
        EXPECT_EQ(alone[static_cast<size_t>(i)], together[static_cast<size_t>(i)]);
        marks += alone[static_cast<size_t>(i)] != 0xFFFFFF;
    }
    EXPECT_GT(marks, 50);
    EXPECT_EQ(Pixels("\xC2\xB0\x43"), Pixels("\xB0\x43")) << "a byte that is none is Windows-1252";
    EXPECT_NE(Pixels(""), Pixels("\U0003FFFD")) << "what no font has is a box";
    EXPECT_EQ(Pixels("\U0003FFFD"), Pixels("\U0003FFFC"));
    EXPECT_EQ(Pixels("\u00E9"), Pixels("e\u0301")) << "the mark sits on its letter";
}

// Carets, measures and cuts agree, at every byte of every text.
TEST_F(Utf8Drawing, NothingCutsALetter) {
    std::mt19937 random(15);
    std::vector<std::string> texts(std::begin(kTexts), std::end(kTexts));
    for (int i = 0; i < 60; ++i) {  // bytes of all kinds
        std::string text;
        for (size_t left = random() % 20; left > 0; --left)
            text += random() % 2 ? texts[random() % std::size(kTexts)].substr(random() % 4, random() % 7)
                                 : std::string(1, static_cast<char>(random() % 255 + 1));
        texts.push_back(text);
    }
    for (const std::string& text : texts) {
        SCOPED_TRACE(testing::PrintToString(text));
        const std::vector<size_t> starts = LetterStarts(text);
        const int width = Extent(text);
        std::vector<int> widths(text.size() + 1), edges;
        SIZE size{};
        ASSERT_TRUE(GetTextExtentExPointA(m_dc, text.data(), SizeOf(text), 0, nullptr, widths.data(), &size));
        EXPECT_EQ(width, text.empty() ? 0 : widths[text.size() - 1]);
        EXPECT_EQ(width, LetterX(m_dc, text, text.size()));
        for (size_t at = 0; at < text.size(); ++at) {
            EXPECT_EQ(widths[NextLetter(text, at) - 1], widths[at]);
            const int x = LetterX(m_dc, text, at);
            EXPECT_TRUE(x >= 0 && x <= width);
            EXPECT_EQ(x, LetterX(m_dc, text, LetterStart(text, at)));
        }
        for (int x = -3; x < width + 20; x += 5) {
            const size_t at = LetterAtX(m_dc, text, x);
            EXPECT_EQ(at, LetterStart(text, at));
            int fit = -1;
            ASSERT_TRUE(GetTextExtentExPointA(m_dc, text.data(), SizeOf(text), std::max(x, 0), &fit, nullptr, &size));
            EXPECT_EQ(static_cast<size_t>(fit), LetterStart(text, static_cast<size_t>(fit)));
            EXPECT_TRUE(fit == 0 || widths[static_cast<size_t>(fit) - 1] <= std::max(x, 0));
        }
        int covered = 0;
        for (const TextSpan& span : LetterSpans(m_dc, text, 0, text.size())) covered += span.right - span.left;
        EXPECT_EQ(width, covered);
        // Each line that is drawn says whole letters of the text, in order, and nothing but blanks is lost.
        for (const UINT format :
             {DT_WORDBREAK | DT_NOPREFIX, DT_SINGLELINE | DT_END_ELLIPSIS | DT_NOPREFIX, DT_WORDBREAK | DT_EXPANDTABS})
            for (int room = 0; room < width + 10; room += 17) {
                RECT box = {0, 0, room, 1000};
                DrawTextA(m_dc, text.data(), SizeOf(text), &box, format | DT_CALCRECT);
                EXPECT_EQ(0, box.bottom % m_line);
                DrawTextA(m_dc, text.data(), SizeOf(text), &box, format);
            }
    }
}

TEST_F(Utf8Drawing, LinesEndBetweenLetters) {
    const struct {
        std::string text;
        UINT format;
        int letters;  // wide
        std::string lines;
    } cases[] = {
        {"\u03A9\u03A9\u03A9 \u03A9\u03A9", DT_WORDBREAK, 4, "\u03A9\u03A9\u03A9|\u03A9\u03A9|"},
        {"\u03A9\u0301\u03A9\u0301\u03A9\u0301\u03A9\u0301\u03A9\u0301", DT_END_ELLIPSIS, 4, "\u03A9\u0301\u03A9\u0301...|"},
        {"\u03A9\u03A9\u03A9\u03A9\u03A9", DT_WORDBREAK, 3, "\u03A9\u03A9\u03A9\u03A9\u03A9|"},  // one word
        {"\u6E29\u5EA6\u6E29\u5EA6\u3002", DT_WORDBREAK, 0, "\u6E29|\u5EA6|\u6E29|\u5EA6\u3002|"},
        {"\u03A9&\u03A9&& \u0414", DT_SINGLELINE, 9, "\u03A9\u03A9&amp; \u0414|"},
    };
    for (const auto& c : cases) {
        const int width = c.letters * Extent("\u03A9") + 1;
        const std::string svg = Draw("t.svg", [&](HDC dc) {
            RECT box = {0, 0, width, kHeight};
            DrawTextA(dc, c.text.c_str(), -1, &box, c.format | DT_NOCLIP);
        });
        std::string lines;
        for (size_t at = svg.find("<text"); at != svg.npos; at = svg.find("<text", at + 1)) {
            const size_t begin = svg.find('>', at) + 1;
            lines += svg.substr(begin, svg.find('<', begin) - begin) + '|';
        }
        EXPECT_EQ(c.lines, lines);
    }
}

TEST_F(Utf8Drawing, RunsFromTheRightReadSo) {
    const std::string hebrew = "\u05E9\u05DC\u05D5", mixed = "ab " + hebrew + " 12";
    const int width = Extent(hebrew), blank = Extent(" "), latin = Extent("ab ");
    EXPECT_EQ(width, LetterX(m_dc, hebrew, 0));
    EXPECT_GT(LetterX(m_dc, hebrew, 2), LetterX(m_dc, hebrew, 4));
    EXPECT_EQ(0u, LetterAtX(m_dc, hebrew, width - 1));
    EXPECT_EQ(hebrew.size(), LetterAtX(m_dc, hebrew, 0));
    // The number goes on in the run that is read from the right.
    EXPECT_EQ(latin + Extent("12") + blank + width, LetterX(m_dc, mixed, 3));
    EXPECT_EQ(latin, LetterX(m_dc, mixed, mixed.size() - 2));
    const std::vector<TextSpan> spans = LetterSpans(m_dc, mixed, 0, 5);  // "ab " and the first letter
    ASSERT_EQ(2u, spans.size());
    EXPECT_EQ(0, spans[0].left);
    EXPECT_EQ(latin, spans[0].right);
    EXPECT_EQ(Extent(mixed), spans[1].right);
    // Each letter takes the room of its bytes.
    const int widths[] = {20, 10, 40, 10, 0, 50};
    const FontFace& face = FindDc(m_dc)->Face();
    const ShapedText spread = face.Shape(hebrew)->Spread({30, 50, 50});
    EXPECT_EQ(130, spread.width);
    EXPECT_EQ(100, spread.letters[0].left);
    EXPECT_EQ(0, spread.letters[2].left);
    EXPECT_NE(Pixels(hebrew), Pixels(hebrew, 10, widths));
}

TEST_F(Utf8Drawing, CharactersAreMeasuredByTheirNumber) {
    int widths[3] = {};
    ASSERT_TRUE(GetCharWidth32A(m_dc, 0x3A9, 0x3AB, widths));
    EXPECT_EQ(Extent("\u03A9"), widths[0]);
    ASSERT_TRUE(GetCharWidth32A(m_dc, 0xB0, 0xB0, widths));
    EXPECT_EQ(Extent("\u00B0"), widths[0]);
    EXPECT_FALSE(GetCharWidth32A(m_dc, 0, 0x110000, widths));
}

// Faces and their fonts are shared by all threads; a DC is one thread's own.
TEST_F(Utf8Drawing, ThreadsShareTheFonts) {
    std::vector<int> expected;
    for (const char* text : kTexts) expected.push_back(Extent(text));
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&, thread] {
            const HDC dc = CreateCompatibleDC(nullptr);
            for (int round = 0; round < 8; ++round) {
                const HFONT font =
                    CreateFontA(-12 - (thread + round) % 5, 0, 0, 0, FW_NORMAL, 0, 0, 0, 0, 0, 0, 0, 0, "DejaVu Sans");
                const HGDIOBJ before = SelectObject(dc, font);
                for (size_t i = 0; i < std::size(kTexts); ++i) {
                    SIZE size{};
                    const std::string text = kTexts[i] + std::string(static_cast<size_t>(round), ' ');
                    GetTextExtentPoint32A(dc, text.c_str(), SizeOf(text), &size);
                    TextOutA(dc, 0, 0, text.c_str(), SizeOf(text));
                    EXPECT_TRUE((thread + round) % 5 != 4 || round != 0 || size.cx == expected[i]) << text;
                }
                DeleteObject(SelectObject(dc, before));
            }
            DeleteDC(dc);
        });
    for (std::thread& thread : threads) thread.join();
}

TEST_F(Utf8Drawing, PagesSayEveryLetter) {
    const auto draw = [&](HDC dc) {
        int y = 5;
        SetBkColor(dc, RGB(230, 240, 255));
        for (const char* text : kTexts) {
            TextOutA(dc, 10, y, text, SizeOf(text));
            y += 30;
        }
        SetTextAlign(dc, TA_CENTER | TA_BASELINE);
        const HFONT turned = CreateFontA(-16, 0, 300, 300, FW_BOLD, 1, 0, 0, DEFAULT_CHARSET, 0, 0, 0, FF_ROMAN, "DejaVu Serif");
        const HGDIOBJ before = SelectObject(dc, turned);
        for (const size_t i : {2u, 5u}) TextOutA(dc, 300, 60 * static_cast<int>(i), kTexts[i], SizeOf(kTexts[i]));
        DeleteObject(SelectObject(dc, before));
    };
    const std::string svg = Draw("utf8.svg", draw, kWidth, 460);
    EXPECT_TRUE(IsUtf8(svg));
    for (const char* text : kTexts)
        if (std::string_view(text).find_first_of("\r\t") == std::string_view::npos) {
            EXPECT_NE(svg.npos, svg.find(">" + Utf8FromHouse(text) + "</text>")) << text;
        }
    EXPECT_FALSE(Draw("utf8.png", draw, kWidth, 460).empty());

    const std::string pdf = Draw("utf8.pdf", draw, kWidth, 460);
    EXPECT_NE(pdf.npos, pdf.find("(Plain [V], AV fi) Tj")) << "as before";
    EXPECT_NE(pdf.npos, pdf.find("(\xC5ngstr\xF6m \xB0\x43 \xB5V \x80) Tj"));
    EXPECT_NE(pdf.npos, pdf.find("/BaseFont /AAAAAA+DejaVuSans /Encoding /Identity-H"));
    EXPECT_NE(pdf.npos, pdf.find("> <03A9>\n")) << "what the glyph of an Ohm says";
    EXPECT_NE(pdf.npos, pdf.find("/ActualText <FEFFD8BFDFFC>")) << "the box says another letter elsewhere";
    EXPECT_LT(pdf.size(), 400'000u) << "a part of the fonts";
    const size_t table = std::strtoul(pdf.c_str() + pdf.find("startxref\n") + 10, nullptr, 10);
    const unsigned long count = std::strtoul(pdf.c_str() + table + 7, nullptr, 10);
    for (size_t number = 1; number < count; ++number) {
        const size_t place =
            std::strtoul(pdf.c_str() + table + 5 + pdf.substr(table + 5).find('\n') + 1 + 20 * number, nullptr, 10);
        const std::string head = std::to_string(number) + " 0 obj\n";
        EXPECT_EQ(head, pdf.substr(place, head.size()));
    }
}
}  // namespace
