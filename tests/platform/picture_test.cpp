// Picture files of all kinds, drawn with the same calls on both homes.
#include "platform/picture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <random>
#include <sstream>
#include <tuple>

#include "tests/platform/png_reader.h"
#include "tests/support/last_error.h"
#include "tests/support/test_folder.h"

namespace fs = std::filesystem;

namespace {
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
// "Temperatur å ä ö ° µ €" and what XML would misunderstand, in Windows-1252.
constexpr char kLetters[] = "<\xE5 \xE4 \xF6 \xB0 \xB5 \x80> & \"x\"";

class Picture : public testing::Test, protected TestFolder {
protected:
    template <class Drawing>
    std::string Draw(const std::string& name, int width, int height, Drawing draw) const {
        const HDC dc = OrvikBeginPicture(Path(name).c_str(), width, height);
        EXPECT_NE(dc, nullptr) << name << ": " << GetLastError();
        if (dc == nullptr) return "";
        draw(dc);
        EXPECT_TRUE(OrvikEndPicture(dc, TRUE)) << name << ": " << GetLastError();
        // ORVIK_PICTURES keeps what was drawn, for whoever wants to look at it.
        if (const char* keep = std::getenv("ORVIK_PICTURES"))
            fs::copy_file(Path(name), fs::path(keep) / name, fs::copy_options::overwrite_existing);
        return Read(name);
    }
};

HFONT Font(int height, int weight = FW_NORMAL, int escapement = 0) {
    return CreateFontA(height, 0, escapement, escapement, weight, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, "DejaVu Sans");
}

// Selects an object for a while and deletes it.
class Selected {
public:
    Selected(HDC dc, HGDIOBJ object) : m_dc(dc), m_object(object), m_before(SelectObject(dc, object)) {}
    ~Selected() {
        SelectObject(m_dc, m_before);
        DeleteObject(m_object);
    }
    Selected(const Selected&) = delete;
    Selected& operator=(const Selected&) = delete;

private:
    HDC m_dc;
    HGDIOBJ m_object, m_before;
};

void Write(HDC dc, int x, int y, const std::string& text, UINT align = TA_LEFT | TA_BASELINE) {
    SetTextAlign(dc, align);
    TextOutA(dc, x, y, text.c_str(), static_cast<int>(text.size()));
}

// A little of everything that a chart needs.
void DrawSample(HDC dc) {
    SetBkMode(dc, TRANSPARENT);
    {
        const HBRUSH brush = CreateSolidBrush(RGB(240, 240, 250));
        const RECT plot = {40, 20, 280, 160};
        FillRect(dc, &plot, brush);
        DeleteObject(brush);
    }
    {
        const Selected pen(dc, CreatePen(PS_SOLID, 1, RGB(0, 0, 128)));
        const Selected brush(dc, CreateSolidBrush(RGB(255, 255, 0)));
        MoveToEx(dc, 40, 20, nullptr);
        LineTo(dc, 40, 160), LineTo(dc, 280, 160);
        Rectangle(dc, 240, 30, 270, 50);
        const POINT triangle[] = {{60, 150}, {80, 150}, {70, 130}};
        Polygon(dc, triangle, 3);
        Ellipse(dc, 90, 130, 111, 151);
    }
    {
        const Selected pen(dc, CreatePen(PS_DOT, 1, RGB(160, 160, 160)));
        const POINT steps[] = {{40, 90}, {100, 90}, {100, 60}, {280, 60}};
        Polyline(dc, steps, 4);
    }
    {
        const Selected pen(dc, CreatePen(PS_SOLID, 3, RGB(200, 0, 0)));
        SaveDC(dc);
        SetViewportOrgEx(dc, 10, 5, nullptr);
        IntersectClipRect(dc, 40, 100, 140, 140);
        MoveToEx(dc, 30, 130, nullptr);
        LineTo(dc, 200, 110);
        const ORVIK_CURVE_POINT curve[] = {{40.25f, 105}, {60, 120.5f}, {kNaN, 0},     {80, 120},
                                           {kNaN, 0},     {90, 110},    {95.333f, 130}};
        EXPECT_TRUE(OrvikSmoothPolyline(dc, curve, 7, RGB(0, 128, 0), 1.5f));
        RestoreDC(dc, -1);
    }
    {
        const Selected pen(dc, CreatePen(PS_SOLID, 1, 0));
        SetROP2(dc, R2_NOT);
        MoveToEx(dc, 0, 0, nullptr);
        LineTo(dc, 300, 200);
        SetROP2(dc, R2_COPYPEN);
    }
    SetTextColor(dc, RGB(0x20, 0x40, 0x60));
    {
        const Selected font(dc, Font(-13));
        Write(dc, 160, 180, kLetters, TA_CENTER | TA_TOP), Write(dc, 280, 15, "right\x01 bound", TA_RIGHT | TA_BASELINE);
        SetBkMode(dc, OPAQUE);
        SetBkColor(dc, RGB(255, 224, 192));
        Write(dc, 45, 40, "  on paper", TA_LEFT | TA_BOTTOM);
        SetBkMode(dc, TRANSPARENT);
    }
    const Selected font(dc, Font(-12, FW_BOLD, 900));
    Write(dc, 20, 90, "upwards", TA_CENTER | TA_BASELINE);
}

// What the sample must be: every number follows from the calls above, the middle of pixel (x, y) being at (x + 0.5, y + 0.5).
// Heights of base lines, and the box behind a text, depend on the font's measures: `~` marks a number that may be 3 away.
constexpr char kSampleSvg[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"300\" height=\"200\" viewBox=\"0 0 300 200\">\n"
    "<rect width=\"300\" height=\"200\" fill=\"#ffffff\"/>\n"
    "<rect x=\"40\" y=\"20\" width=\"240\" height=\"140\" fill=\"#f0f0fa\"/>\n"
    "<line x1=\"40.5\" y1=\"20.5\" x2=\"40.5\" y2=\"159.5\" stroke=\"#000080\" stroke-linecap=\"square\"/>\n"
    "<line x1=\"40.5\" y1=\"160.5\" x2=\"279.5\" y2=\"160.5\" stroke=\"#000080\" stroke-linecap=\"square\"/>\n"
    "<rect x=\"241\" y=\"31\" width=\"28\" height=\"18\" fill=\"#ffff00\"/>\n"
    "<rect x=\"240.5\" y=\"30.5\" width=\"29\" height=\"19\" fill=\"none\" stroke=\"#000080\" stroke-linecap=\"square\"/>\n"
    "<polygon points=\"60,150 80,150 70,130\" fill=\"#ffff00\" fill-rule=\"evenodd\"/>\n"
    "<polygon points=\"60.5,150.5 80.5,150.5 70.5,130.5\" fill=\"none\" stroke=\"#000080\" stroke-linecap=\"square\"/>\n"
    "<ellipse cx=\"100.5\" cy=\"140.5\" rx=\"10\" ry=\"10\" fill=\"#ffff00\" stroke=\"#000080\" stroke-linecap=\"square\"/>\n"
    "<polyline points=\"40.5,90.5 100.5,90.5 100.5,60.5 280.5,60.5\" fill=\"none\" stroke=\"#a0a0a0\" stroke-dasharray=\"3 "
    "3\"/>\n"
    "<clipPath id=\"clip1\">\n"
    "<rect x=\"50\" y=\"105\" width=\"100\" height=\"40\"/>\n"
    "</clipPath>\n"
    "<g clip-path=\"url(#clip1)\">\n"
    "<line x1=\"40.5\" y1=\"135.5\" x2=\"210.5\" y2=\"115.5\" stroke=\"#c80000\" stroke-width=\"3\" stroke-linecap=\"round\" "
    "stroke-linejoin=\"round\"/>\n"
    "<line x1=\"50.75\" y1=\"110.5\" x2=\"70.5\" y2=\"126\" stroke=\"#008000\" stroke-width=\"1.5\" stroke-linecap=\"round\" "
    "stroke-linejoin=\"round\"/>\n"
    "<circle cx=\"90.5\" cy=\"125.5\" r=\"0.75\" fill=\"#008000\"/>\n"
    "<line x1=\"100.5\" y1=\"115.5\" x2=\"105.83\" y2=\"135.5\" stroke=\"#008000\" stroke-width=\"1.5\" stroke-linecap=\"round\" "
    "stroke-linejoin=\"round\"/>\n"
    "</g>\n"
    "<text x=\"160\" y=\"~192\" font-family=\"'DejaVu Sans', sans-serif\" font-size=\"13\" fill=\"#204060\" "
    "text-anchor=\"middle\">"
    "&lt;\xC3\xA5 \xC3\xA4 \xC3\xB6 \xC2\xB0 \xC2\xB5 \xE2\x82\xAC&gt; &amp; &quot;x&quot;</text>\n"
    "<text x=\"280\" y=\"15\" font-family=\"'DejaVu Sans', sans-serif\" font-size=\"13\" fill=\"#204060\" text-anchor=\"end\">"
    "right bound</text>\n"
    "<rect x=\"45\" y=\"~25\" width=\"~65\" height=\"~15\" fill=\"#ffe0c0\"/>\n"
    "<text x=\"45\" y=\"~37\" font-family=\"'DejaVu Sans', sans-serif\" font-size=\"13\" fill=\"#204060\" xml:space=\"preserve\">"
    "  on paper</text>\n"
    "<text x=\"20\" y=\"90\" font-family=\"'DejaVu Sans', sans-serif\" font-size=\"12\" font-weight=\"700\" fill=\"#204060\" "
    "text-anchor=\"middle\" transform=\"rotate(-90 20 90)\">upwards</text>\n"
    "</svg>\n";

// Line by line; a number behind `~` within 3.
void ExpectLike(const std::string& got, const std::string& expected) {
    std::istringstream gotLines(got), expectedLines(expected);
    for (std::string a, b; std::getline(expectedLines, b);) {
        ASSERT_TRUE(std::getline(gotLines, a)) << "missing: " << b;
        const std::string whole = b;
        size_t i = 0, j = 0;
        while (j < b.size() && i < a.size()) {
            if (b[j] == '~') {
                char *endA = nullptr, *endB = nullptr;
                EXPECT_NEAR(std::strtod(a.c_str() + i, &endA), std::strtod(b.c_str() + j + 1, &endB), 3) << a << "\n" << whole;
                i = static_cast<size_t>(endA - a.c_str()), j = static_cast<size_t>(endB - b.c_str());
            } else if (a[i] == b[j]) {
                ++i, ++j;
            } else {
                break;
            }
        }
        EXPECT_TRUE(i == a.size() && j == b.size()) << "got:      " << a << "\nexpected: " << whole;
    }
    std::string more;
    EXPECT_FALSE(std::getline(gotLines, more)) << more;
}

uint32_t Grey(uint32_t pixel) { return pixel & 0xFF; }

TEST_F(Picture, SvgIsTheSameOnBothHomes) { ExpectLike(Draw("sample.svg", 300, 200, DrawSample), kSampleSvg); }

TEST_F(Picture, PdfHoldsOnePageAndIsForPaper) {
    const std::string pdf = Draw("sample.PDF", 300, 200, [](HDC dc) {
        EXPECT_TRUE(OrvikIsPrinting(dc));
        DrawSample(dc);
    });
    EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
    EXPECT_EQ(pdf.substr(pdf.find_last_not_of("\r\n") - 4, 5), "%%EOF");
    EXPECT_NE(pdf.find("/MediaBox [0 0 225 150]") + pdf.find("/MediaBox [ 0 0 225 150 ]") + 1, std::string::npos)
        << pdf.substr(0, 400);
}

TEST_F(Picture, PngHasThePixelsThatWereDrawn) {
    const PngImage image = ReadPng(Draw("sample.Png", 300, 200, [](HDC dc) {
        EXPECT_FALSE(OrvikIsPrinting(dc));
        DrawSample(dc);
        SetPixelV(dc, 299, 199, RGB(1, 2, 3));
    }));
    ASSERT_EQ(image.width, 300);
    ASSERT_EQ(image.height, 200);
    EXPECT_EQ(image.At(299, 0), 0xFFFFFFu);    // paper
    EXPECT_EQ(image.At(299, 199), 0x010203u);  // red, green, blue
    EXPECT_EQ(image.At(40, 100), 0x000080u);   // the left axis
    EXPECT_EQ(image.At(150, 100), ~0xF0F0FAu & 0xFFFFFF) << "R2_NOT works on pixels: the line runs through here";
    EXPECT_EQ(image.At(260, 100), 0xF0F0FAu);  // the plot
    EXPECT_EQ(image.At(255, 40), 0xFFFF00u);   // in the rectangle
}

TEST_F(Picture, BadNamesAndSizesAreRefused) {
    using Row = std::tuple<const char*, int, int, DWORD>;
    for (const auto& [name, width, height, error] :
         {Row{"a.bmp", 10, 10, ERROR_INVALID_PARAMETER}, Row{"png", 10, 10, ERROR_INVALID_PARAMETER},
          Row{".png", 10, 10, ERROR_INVALID_PARAMETER}, Row{"a.png ", 10, 10, ERROR_INVALID_PARAMETER},
          Row{"a.png", 0, 10, ERROR_INVALID_PARAMETER}, Row{"a.svg", 10, -1, ERROR_INVALID_PARAMETER},
          Row{"a.pdf", 16385, 1, ERROR_INVALID_PARAMETER}, Row{"a.png", 16384, 4097, ERROR_NOT_ENOUGH_MEMORY}}) {
        SetLastError(0);
        EXPECT_EQ(OrvikBeginPicture(name, width, height), nullptr) << name;
        EXPECT_EQ(GetLastError(), error) << name << ' ' << width << ' ' << height;
    }
    EXPECT_EQ(OrvikBeginPicture(nullptr, 1, 1), nullptr);
    EXPECT_FAILS(OrvikEndPicture(nullptr, TRUE), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(OrvikIsPrinting(nullptr));
    EXPECT_EQ(Count(), 0u);
}

// What a page cannot hold is told, and the previous file stays.
TEST_F(Picture, PagesRefuseBitmapsInSvg) {
    std::ofstream(Path("a.svg")) << "previous";
    const HDC dc = OrvikBeginPicture(Path("a.svg").c_str(), 20, 10);
    const HDC memory = CreateCompatibleDC(nullptr);
    BitBlt(dc, 0, 0, 1, 1, memory, 0, 0, SRCCOPY);
    DeleteDC(memory);
    EXPECT_FAILS(OrvikEndPicture(dc, TRUE), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(Read("a.svg"), "previous");
}

// A level line of one pixel and its neighbours, an even slope and its mirror image, a clip, one in parts, a moved origin, a dot.
TEST_F(Picture, SmoothLinesCoverWhatTheyShould) {
    const PngImage image = ReadPng(Draw("smooth.png", 200, 120, [](HDC dc) {
        const auto line = [&](std::initializer_list<ORVIK_CURVE_POINT> points, float width) {
            EXPECT_TRUE(OrvikSmoothPolyline(dc, points.begin(), static_cast<int>(points.size()), 0, width));
        };
        line({{10, 10}, {30, 10}}, 1), line({{10, 20.5f}, {30, 20.5f}}, 1);
        line({{50, 10}, {99, 40}, {148, 10}}, 2);  // mirrored about x = 99
        line({{20, 60}}, 6), line({{10, 80}, {20, 80}, {kNaN, kNaN}, {40, 80}, {50, 80}}, 1);
        line({{1e30f, 100}, {-1e30f, 100}}, 0.5f);
        SaveDC(dc);
        SetWindowOrgEx(dc, -100, -50, nullptr);
        IntersectClipRect(dc, 10, 10, 30, 30);
        line({{0, 20}, {90, 20}}, 3);
        RestoreDC(dc, -1);
        line({}, 1);
        SaveDC(dc);
        ExcludeClipRect(dc, 60, 104, 140, 118);
        line({{50, 114}, {150, 114}}, 1), line({{150, 107}, {170, 107}}, 1), line({{20, 110}, {40, 110}}, 1);
        RestoreDC(dc, -1);
    }));
    EXPECT_EQ(image.At(20, 10), 0u);
    EXPECT_EQ(image.At(20, 9), 0xFFFFFFu);
    EXPECT_NEAR(Grey(image.At(20, 20)), 127, 1);  // half of each
    EXPECT_EQ(image.At(20, 20), image.At(20, 21));
    size_t grey = 0;
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 60; ++x) {
            EXPECT_EQ(image.At(99 - x, y), image.At(99 + x, y)) << x << ' ' << y;
            grey += Grey(image.At(99 + x, y)) != 255 && Grey(image.At(99 + x, y)) != 0;
        }
    }
    EXPECT_GT(grey, 50u) << "edges fade";
    double ink = 0;  // the dot's area is that of a circle
    for (int y = 50; y < 70; ++y)
        for (int x = 10; x < 30; ++x) ink += (255 - Grey(image.At(x, y))) / 255.0;
    EXPECT_NEAR(ink, 3.14159 * 9, 1.0);
    EXPECT_EQ(image.At(30, 80), 0xFFFFFFu) << "a gap";
    EXPECT_EQ(image.At(45, 80), 0u);
    EXPECT_NEAR(Grey(image.At(100, 100)), 127, 1) << "half a pixel wide, far points brought near";
    for (int x = 100; x < 200; ++x)
        EXPECT_EQ(image.At(x, 70), x >= 110 && x < 130 ? 0u : 0xFFFFFFu) << x;  // clipped, and moved by the origin
    // A clip in parts: a line across the hole in it, and lines that lie beside one of its parts.
    for (int x = 0; x < 200; ++x) {
        EXPECT_EQ(image.At(x, 114), (x >= 50 && x < 60) || (x >= 140 && x <= 150) ? 0u : 0xFFFFFFu) << x;
        EXPECT_EQ(image.At(x, 107), x >= 150 && x <= 170 ? 0u : 0xFFFFFFu) << x;
        EXPECT_EQ(image.At(x, 110), x >= 20 && x <= 40 ? 0u : 0xFFFFFFu) << x;
    }

    // Up and down over itself, and from column to column, a line is what its parts are one by one.
    const ORVIK_CURVE_POINT up[] = {{20.3f, 90.2f}, {20.3f, 30}, {20.3f, 60}, {20.3f, 10.6f}, {20.3f, 40}, {31, 80},
                                    {31, 20},       {31, 95},    {32, 50},    {32, 15},       {32, 70},    {33, 90},
                                    {33, 98},       {33.6f, 40}, {33.6f, 20}, {34.4f, 5},     {34.4f, 50}};
    const auto draw = [&](const char* name, bool apart) {
        return ReadPng(Draw(name, 50, 100, [&](HDC dc) {
            std::vector<ORVIK_CURVE_POINT> line;
            for (size_t i = 0; i < std::size(up); ++i) {
                if (apart && i > 0) line.insert(line.end(), {up[i - 1], up[i], {kNaN, kNaN}});
                if (!apart) line.push_back(up[i]);
            }
            EXPECT_TRUE(OrvikSmoothPolyline(dc, line.data(), static_cast<int>(line.size()), 0, 1.3f));
        }));
    };
    const PngImage whole = draw("whole.png", false), parts = draw("parts.png", true);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 50; ++x) EXPECT_NEAR(Grey(whole.At(x, y)), Grey(parts.At(x, y)), 1) << x << ' ' << y;
    EXPECT_EQ(whole.At(31, 95), 0u);
    EXPECT_NE(whole.At(20, 11), 0xFFFFFFu);

    const ORVIK_CURVE_POINT point = {0, 0};
    const HDC dc = OrvikBeginPicture(Path("x.png").c_str(), 5, 5);
    for (const float width : {0.0f, -1.0f, 101.0f, kNaN})
        EXPECT_FAILS(OrvikSmoothPolyline(dc, &point, 1, 0, width), ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(OrvikSmoothPolyline(dc, nullptr, 1, 0, 1));
    EXPECT_FALSE(OrvikSmoothPolyline(nullptr, &point, 1, 0, 1));
    OrvikEndPicture(dc, FALSE);
}

TEST_F(Picture, PixelsOfADcAreSaved) {
    const HDC dc = OrvikBeginPicture(Path("x.png").c_str(), 40, 30);
    const RECT spot = {10, 10, 12, 12}, area = {9, 9, 13, 12}, none = {5, 5, 5, 9};
    const HBRUSH brush = CreateSolidBrush(RGB(255, 128, 0));
    FillRect(dc, &spot, brush);
    DeleteObject(brush);
    EXPECT_TRUE(OrvikSavePixels(dc, &area, Path("part.png").c_str()));
    const PngImage part = ReadPng(Read("part.png"));
    const uint32_t w = 0xFFFFFF, o = 0xFF8000;
    EXPECT_EQ(part.width, 4);
    EXPECT_EQ(part.pixels, (std::vector<uint32_t>{w, w, w, w, w, o, o, w, w, o, o, w}));
    for (const auto& [rect, name] : {std::pair{&none, "a.png"}, {&area, "a.svg"}, {static_cast<const RECT*>(nullptr), "a.png"}})
        EXPECT_FAILS(OrvikSavePixels(dc, rect, Path(name).c_str()), ERROR_INVALID_PARAMETER);
    OrvikEndPicture(dc, FALSE);
    EXPECT_EQ(Count(), 1u);
}
}  // namespace
