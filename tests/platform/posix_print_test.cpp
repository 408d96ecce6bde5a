// Printing by a screen's printers: what they are asked and given, and what becomes of their answers.
#include "platform/print.h"

#include <algorithm>
#include <cstdlib>
#include <thread>

#include "platform/picture.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "tests/platform/window_log.h"
#include "tests/support/last_error.h"
#include "tests/support/table.h"
#include "tests/support/test_folder.h"

using namespace orvik::detail;

namespace {
class NotingPrinters final : public ScreenPrinters {
public:
    // From a thread of their own, as a screen's is.
    void Ask(PrinterQuestion question, std::function<void(std::optional<PrinterChoice>)> answer) override {
        asked = question;
        disabled = IsWindowEnabled(question.owner) == FALSE;
        std::thread([answer, chosen = choice] { answer(chosen); }).detach();
    }
    void Print(unsigned number, std::string name, std::string file, std::function<void(DWORD)> answer) override {
        EXPECT_EQ(number, choice->number);
        document = name, pdf = file;
        if (quits)
            PostQuitMessage(7);
        else
            std::thread([answer, code = result] { answer(code); }).detach();
    }
    void Forget(unsigned number) override { forgotten = number; }

    PrinterQuestion asked;
    bool disabled = false, quits = false;
    std::optional<PrinterChoice> choice = PrinterChoice{4, {841.89, 595.28, 0, 0, 0, 0}, ""};
    DWORD result = ERROR_SUCCESS;
    std::string document, pdf;
    unsigned forgotten = 0;
};

class PrintingScreen final : public Screen {
public:
    void Changed(HWND) override {}
    void Damaged(HWND, const RECT&) override {}
    void AskForFile(FileQuestion, FileAnswer answer) override { answer(std::nullopt); }
    void Described(HWND, std::shared_ptr<const OrvikAccessible>) override {}
    ScreenPrinters* Printers() override { return &printers; }
    void End() override {}

    NotingPrinters printers;
};

class PrintTest : public window_test::WindowLogTest, protected TestFolder {
protected:
    void SetUp() override {
        WindowLogTest::SetUp();
        m_before = UseScreen(&m_screen);
        m_owner = Make("owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, {0, 0, 100, 80});
    }
    void TearDown() override {
        WindowLogTest::TearDown();
        UseScreen(m_before);
    }
    // A whole print; the last error in case of a failure.
    std::optional<DWORD> Print(void (*draw)(HDC) = [](HDC dc) { TextOutA(dc, 0, 0, "Week 12", 7); }) {
        const HDC dc = OrvikBeginPrint(m_owner, "week.odb", &m_page);
        if (dc == nullptr) return GetLastError();
        EXPECT_TRUE(OrvikIsPrinting(dc));
        draw(dc);
        const BOOL printed = OrvikEndPrint(dc, TRUE);
        const DWORD error = GetLastError();
        EXPECT_FALSE(OrvikIsPrinting(dc));
        EXPECT_EQ(Printers().forgotten, 4u);
        EXPECT_TRUE(IsWindowEnabled(m_owner));
        return printed ? std::nullopt : std::optional(error);
    }
    NotingPrinters& Printers() { return m_screen.printers; }

    PrintingScreen m_screen;
    Screen* m_before = nullptr;
    HWND m_owner = nullptr;
    SIZE m_page{};
};
}  // namespace

TEST_F(PrintTest, AChosenSheetBecomesAPdfOfItsSize) {
    EXPECT_EQ(Print(), std::nullopt);
    EXPECT_EQ(Printers().asked.owner, m_owner);
    EXPECT_TRUE(Printers().disabled);
    EXPECT_EQ(Printers().document, "week.odb");
    // A4, 297 by 210 mm, less 10 mm on each side: 277 and 190 mm are 1046.9 and 718.1 parts of 96 an inch.
    EXPECT_EQ(m_page.cx, 1046);
    EXPECT_EQ(m_page.cy, 718);
    EXPECT_NE(Printers().pdf.find("/MediaBox [0 0 841.89 595.28]"), std::string::npos);
    EXPECT_NE(Printers().pdf.find("0.75 0 0 -0.75 28.35 566.93 cm"), std::string::npos);
    EXPECT_NE(Printers().pdf.find("(Week 12)"), std::string::npos);
}

TEST_F(PrintTest, MarginsAreThoseOfThePrinterWhereTheyAreWider) {
    struct Case {
        Sheet sheet;
        LONG width, height;
        double left, top;
    };
    // Points: Letter with half an inch at the bottom, a sheet of labels, and one that has nothing to print on.
    for (const Case& each :
         Table(Case{{612, 792, 18, 36, 18, 36}, 740, 960, 28.35, 36}, Case{{144, 72, 0, 0, 0, 0}, 172, 76, 7.2, 7.2},
               Case{{100, 100, 60, 10, 60, 10}, 1, 106, 60, 10})) {
        const SheetRoom room = RoomOn(each.sheet);
        EXPECT_EQ(room.size.cx, each.width);
        EXPECT_EQ(room.size.cy, each.height);
        EXPECT_NEAR(room.left, each.left, 0.01);
        EXPECT_NEAR(room.top, each.top, 0.01);
    }
}

TEST_F(PrintTest, WhatGoesWrongIsToldAndNothingElseHappens) {
    for (const DWORD code : {kOrvikNoPrinter, DWORD{ERROR_DISK_FULL}}) {
        Printers().result = code;
        EXPECT_EQ(Print(), code);
    }
    Printers().result = ERROR_SUCCESS;
    Printers().pdf.clear();
    EXPECT_EQ(Print([](HDC dc) {
                  const HDC pixels = CreateCompatibleDC(dc);
                  BitBlt(dc, 0, 0, 1, 1, pixels, 0, 0, SRCCOPY);
                  DeleteDC(pixels);
              }),
              DWORD{ERROR_NOT_SUPPORTED});
    const HDC dropped = OrvikBeginPrint(m_owner, "week.odb", &m_page);
    EXPECT_TRUE(OrvikEndPrint(dropped, FALSE));
    EXPECT_FALSE(OrvikEndPrint(dropped, TRUE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_EQ(OrvikBeginPrint(m_owner, nullptr, &m_page), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
    EXPECT_EQ(Printers().pdf, "");
    // The program ends meanwhile: its loop hears of that.
    Printers().quits = true;
    EXPECT_EQ(Print(), DWORD{ERROR_TIMEOUT});
    MSG message;
    EXPECT_TRUE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) && message.message == WM_QUIT && message.wParam == 7);

    Printers().choice = std::nullopt;
    EXPECT_EQ(Print(), DWORD{ERROR_SUCCESS});  // given up
    UseScreen(nullptr);
    EXPECT_EQ(Print(), DWORD{ERROR_NOT_SUPPORTED});
    UseScreen(&m_screen);
}

TEST_F(PrintTest, AFileInPlaceOfAPrinterIsReplacedAsAWhole) {
    Write("week.pdf", "before");
    Printers().choice->file = Path("week.pdf");
    EXPECT_EQ(Print(), std::nullopt);
    EXPECT_EQ(Read("week.pdf").substr(0, 5), "%PDF-");
    EXPECT_EQ(Printers().pdf, "") << "no printer was troubled";
    Printers().choice->file = Path("nowhere/week.pdf");
    EXPECT_EQ(Print(), DWORD{ERROR_PATH_NOT_FOUND});
}
