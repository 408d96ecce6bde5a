// Text in the letters of any script, drawn and measured in a process that chose UTF-8.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/picture.h"
#include "platform/posix/drawing/text_places_internal.h"
#include "tests/support/test_folder.h"

using namespace orvik::detail;
namespace fs = std::filesystem;

namespace {
constexpr const char* kTexts[] = {"Plain [V], AV fi", "\u00C5ngstr\u00F6m \u00B0C \u00B5V \u20AC", "\u0391\u03BD\u03C4\u03AF\u03C3\u03C4\u03B1\u03C3\u03B7 [k\u03A9]",
    "\u6E29\u5EA6 [\u2103]", "CO\u2082 [ppm]", "\u0645\u0642\u0627\u0648\u0645\u0629", "\u092A\u094D\u0930\u0924\u093F\u0930\u094B\u0927", "cafe\u0301 + x\u0302",
    "\U0001F321 \U0001F600 \U0001F1F8\U0001F1EA", "R = \u0645\u0642\u0627\u0648\u0645\u0629 12 k\u03A9", "\u05E9\u05DC\u05D5\u05DD (abc)", "missing \U0001F9FF\U00012345 \U0003FFFD", "byte \xB5m \xFF k\u03A9"};

class Utf8Drawing : public testing::Test, protected TestFolder {
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

HFONT Font(int height, int escapement = 0) {
    return CreateFontA(height, 0, escapement, escapement, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, "DejaVu Sans");
}

TEST_F(Utf8Drawing, Sample) {
    for (const char* name : {"utf8.png", "utf8.svg", "utf8.pdf"})
        Draw(name, 640, 520, [](HDC dc) {
            int y = 10;
            SetBkColor(dc, RGB(230, 240, 255));
            for (const int height : {-13, -24}) {
                const HFONT font = Font(height);
                const HGDIOBJ before = SelectObject(dc, font);
                int row = y;
                for (const char* text : kTexts) {
                    TextOutA(dc, height == -13 ? 10 : 220, row, text, static_cast<int>(strlen(text)));
                    row += 34;
                }
                SelectObject(dc, before);
                DeleteObject(font);
            }
            const HFONT font = Font(-16, 300);
            const HGDIOBJ before = SelectObject(dc, font);
            SetTextAlign(dc, TA_CENTER | TA_BASELINE);
            TextOutA(dc, 560, 300, kTexts[2], static_cast<int>(strlen(kTexts[2])));
            TextOutA(dc, 560, 380, kTexts[5], static_cast<int>(strlen(kTexts[5])));
            SelectObject(dc, before);
            DeleteObject(font);
        });
}
}  // namespace
