// What windows tell a screen, and what a screen tells them: by a screen that only takes notes.
#include <algorithm>
#include <map>
#include <set>

#include "platform/house_text_internal.h"
#include "platform/posix/dialogs/message_box_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/scripted_input_internal.h"
#include "tests/platform/window_log.h"
#include "tests/support/table.h"
#include "tests/support/test_folder.h"

using namespace orvik::detail;

namespace {
class NotingScreen final : public Screen {
public:
    void Changed(HWND window) override { changed.insert(window); }
    void Damaged(HWND window, const RECT& area) override {
        damaged.insert(window);
        last = area;
    }
    void AskForFile(FileQuestion asked, FileAnswer answer) override {
        questions.push_back(asked);
        if (answers.empty()) return answer(std::nullopt);
        const std::string path = answers.front();
        answers.erase(answers.begin());
        answer(FileChoice{path, kind});
    }
    void Described(HWND window, std::shared_ptr<const OrvikAccessible> said) override { described[window] = std::move(said); }
    void End() override {}

    std::map<HWND, std::shared_ptr<const OrvikAccessible>> described;
    std::set<HWND> changed, damaged;
    RECT last{};
    std::vector<FileQuestion> questions;
    std::vector<std::string> answers;
    size_t kind = 0;  // chosen with them
};

class ScreenTest : public window_test::WindowLogTest {
protected:
    void SetUp() override {
        WindowLogTest::SetUp();
        m_before = UseScreen(&m_screen);
    }
    void TearDown() override {
        WindowLogTest::TearDown();
        UseScreen(m_before);
    }
    static ShownWindow Shown(HWND window) {
        ShownWindow shown;
        EXPECT_TRUE(TheScreenHost().Describe(window, shown));
        return shown;
    }
    static uint32_t PixelShown(HWND window, int x, int y) {
        uint32_t pixel = 0xDEAD;
        TheScreenHost().Lend(window, [&](const PixelView& picture) { pixel = picture.Row(y)[x]; });
        return pixel;
    }
    static void Post(HWND window, ScreenEvent::Kind kind, UINT code, int x = 0, int y = 0) {
        ScreenEvent event{kind};
        event.code = code;
        event.x = x;
        event.y = y;
        TheScreenHost().Post(window, event);
    }
    static void Key(HWND window, UINT key, std::u16string letters, bool untyped = false) {
        ScreenEvent event{ScreenEvent::Kind::Key};
        event.code = key;
        event.letters = std::move(letters);
        event.untyped = untyped;
        for (const bool down : {true, false}) {
            event.down = down;
            TheScreenHost().Post(window, event);
        }
    }
    // Handles messages until there are none, as a program with nothing else to do.
    static void Idle() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }

    NotingScreen m_screen;
    Screen* m_before = nullptr;
};

const RECT kPlace{10, 20, 110, 80};
}  // namespace

TEST_F(ScreenTest, SeesWindowsAsTheyAreAndWholePicturesAlone) {
    const HWND window = Make("window", WS_OVERLAPPEDWINDOW, kPlace);
    SetWindowTextA(window, "Session");
    EXPECT_FALSE(Shown(window).visible);
    ShowWindow(window, SW_SHOW);
    const ShownWindow shown = Shown(window);
    EXPECT_TRUE(shown.visible && shown.enabled && shown.resizable && !shown.dialog);
    EXPECT_EQ(shown.title, "Session");
    EXPECT_TRUE(m_screen.changed.count(window));

    // A picture comes when nothing is left to paint, and not before.
    const HDC dc = GetDC(window);
    const RECT corner{0, 0, 5, 5};
    FillRect(dc, &corner, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    EXPECT_EQ(PixelShown(window, 50, 30), 0xDEADu);
    Idle();
    EXPECT_EQ(PixelShown(window, 50, 30), 0xFFFFFFu);
    // What is drawn outside of painting is seen as well, while the context is still open, and when it has been released.
    FillRect(dc, &corner, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    Idle();
    EXPECT_EQ(PixelShown(window, 2, 2), 0u);
    SetPixel(dc, 3, 3, RGB(255, 0, 0));
    ReleaseDC(window, dc);
    Idle();
    EXPECT_EQ(PixelShown(window, 3, 3), 0xFF0000u);

    m_screen.changed.clear();
    DestroyWindow(window);
    ShownWindow gone;
    EXPECT_TRUE(m_screen.changed.count(window));
    EXPECT_FALSE(TheScreenHost().Describe(window, gone));
}

TEST_F(ScreenTest, ASizeChosenThereIsNotAskedForAgain) {
    const HWND window = Make("window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
    // While the user drags, only the last size counts.
    for (const int width : {120, 150, 180}) Post(window, ScreenEvent::Kind::Resized, 0, width, 90);
    Idle();
    RECT client{};
    GetClientRect(window, &client);
    EXPECT_EQ(client.right, 180);
    EXPECT_EQ(client.bottom, 90);
    EXPECT_TRUE(Shown(window).sizedByScreen);
    MoveWindow(window, 0, 0, 200, 100, TRUE);
    EXPECT_FALSE(Shown(window).sizedByScreen);

    Post(window, ScreenEvent::Kind::State, static_cast<UINT>(ShownWindow::State::Maximised));
    Idle();
    EXPECT_TRUE(IsZoomed(window));
    const unsigned asked = Shown(window).stateAsked;
    ShowWindow(window, SW_RESTORE);
    EXPECT_GT(Shown(window).stateAsked, asked);
    EXPECT_FALSE(IsZoomed(window));

    Post(window, ScreenEvent::Kind::DotsChanged, 192, 400, 200);
    Idle();
    EXPECT_EQ(GetDpiForWindow(window), 192u);
    GetClientRect(window, &client);
    EXPECT_EQ(client.right, 400);
}

TEST_F(ScreenTest, LettersComeInTheOrderOfTheirKeys) {
    const HWND edit = CreateWindowExA(0, "Edit", "", WS_POPUP | WS_VISIBLE, 0, 0, 200, 40, nullptr, nullptr, nullptr, nullptr);
    SetFocus(edit);
    Key(edit, 'K', u"k");
    Post(edit, ScreenEvent::Kind::Text, 0);  // of a method that gave up
    ScreenEvent letters{ScreenEvent::Kind::Text};
    letters.letters = u"\u00E9\u00E8\u00EA!";
    TheScreenHost().Post(edit, letters);
    Key(edit, VK_PROCESSKEY, u"", true);
    Key(edit, VK_SPACE, u"");
    Key(edit, 'X', u"x");
    Key(edit, VK_LEFT, u"");
    Key(edit, VK_BACK, u"");
    Key(edit, 'Y', u"y");
    Idle();
    char text[64] = "";
    GetWindowTextA(edit, text, sizeof text);
    EXPECT_EQ(Utf8FromHouse(text), "k\u00E9\u00E8\u00EA!yx");
    DestroyWindow(edit);
}

TEST_F(ScreenTest, FilesComeAsTheyWereDropped) {
    const HWND window = Make("window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
    EXPECT_FALSE(Shown(window).takesFiles);
    DragAcceptFiles(window, TRUE);
    EXPECT_TRUE(Shown(window).takesFiles);
    ScreenEvent event{ScreenEvent::Kind::Dropped};
    event.paths = {"/a/week.odb", "/a/other.csv"};
    event.x = 7, event.y = 9;
    TheScreenHost().Post(window, event);
    MSG message;
    ASSERT_TRUE(PeekMessageA(&message, window, WM_DROPFILES, WM_DROPFILES, PM_REMOVE));
    const HDROP drop = reinterpret_cast<HDROP>(message.wParam);
    char name[8] = "";
    POINT at{};
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 2u);
    EXPECT_EQ(DragQueryFileA(drop, 1, nullptr, 0), 12u);
    EXPECT_EQ(DragQueryFileA(drop, 0, name, sizeof name), 7u);
    EXPECT_STREQ(name, "/a/week");
    EXPECT_EQ(DragQueryFileA(drop, 2, name, sizeof name), 0u);
    EXPECT_TRUE(DragQueryPoint(drop, &at) && at.x == 7 && at.y == 9);
    DragFinish(drop);
    EXPECT_EQ(DragQueryFileA(drop, 0xFFFFFFFF, nullptr, 0), 0u);
    DestroyWindow(window);
    TheScreenHost().Post(window, event);  // which has gone meanwhile
}

TEST_F(ScreenTest, TellsWhereLettersAreTypedAndWhatTheWindowLooksLike) {
    const HWND window = Make("window", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
    const HWND edit =
        CreateWindowExA(0, "Edit", "wide", WS_CHILD | WS_VISIBLE, 30, 10, 60, 20, window, nullptr, nullptr, nullptr);
    SetFocus(edit);
    const RECT before = Shown(window).caret;
    EXPECT_TRUE(before.left >= 30 && before.top >= 10 && before.bottom > before.top);
    SendMessageA(edit, WM_KEYDOWN, VK_END, 1);
    EXPECT_GT(Shown(window).caret.left, before.left);
    SetFocus(window);
    EXPECT_EQ(Shown(window).caret.bottom, 0);

    EXPECT_TRUE(Shown(window).icons.empty());
    const auto icon = [](int size) {
        return static_cast<HICON>(
            LoadImageA(GetModuleHandleA("OrvikShared"), MAKEINTRESOURCEA(176), IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
    };
    const HICON big = icon(48), small = icon(16);
    SendMessageA(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(big));
    EXPECT_EQ(SendMessageA(window, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small)), 0);
    EXPECT_EQ(reinterpret_cast<HICON>(SendMessageA(window, WM_GETICON, ICON_BIG, 0)), big);
    const std::vector<CursorLook> icons = Shown(window).icons;
    ASSERT_EQ(icons.size(), 2u);
    EXPECT_EQ(icons[0].width, 48);
    EXPECT_EQ(icons[1].width, 16);
    DestroyIcon(big);
    DestroyIcon(small);
}

TEST_F(ScreenTest, TheFocusGoesWhereAnAnswerIsAwaited) {
    const HWND owner = Make("owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
    const HWND other = Make("other", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
    const HWND dialog = Make("dialog", WS_POPUP | WS_CAPTION | WS_VISIBLE, kPlace, owner);
    EnableWindow(owner, FALSE);
    SetActiveWindow(other);
    const unsigned raised = Shown(dialog).raised;
    Post(owner, ScreenEvent::Kind::Focused, 0);
    Idle();
    EXPECT_EQ(GetActiveWindow(), dialog);
    EXPECT_GT(Shown(dialog).raised, raised);  // the screen has the owner in front
    const unsigned again = Shown(other).raised;
    Post(other, ScreenEvent::Kind::Focused, 0);
    Idle();
    EXPECT_EQ(GetActiveWindow(), other);
    EXPECT_EQ(Shown(other).raised, again);  // it stands in front there already
    Post(other, ScreenEvent::Kind::Left, 0);
    Idle();
    EXPECT_EQ(GetActiveWindow(), nullptr);

    Post(owner, ScreenEvent::Kind::CloseWished, 0);
    Idle();
    EXPECT_TRUE(IsWindow(owner));
    Post(other, ScreenEvent::Kind::CloseWished, 0);
    Idle();
    EXPECT_FALSE(IsWindow(other));
}

TEST_F(ScreenTest, ABoxAsksInAWindow) {
    struct Case {
        UINT type;
        UINT key;
        int answer;
    };
    for (const Case& each :
         Table(Case{MB_YESNOCANCEL, 'N', IDNO}, Case{MB_YESNOCANCEL, VK_ESCAPE, IDCANCEL}, Case{MB_YESNO, VK_RETURN, IDYES},
               Case{MB_YESNO | MB_DEFBUTTON2, VK_RETURN, IDNO}, Case{MB_OK, VK_ESCAPE, IDOK}, Case{MB_RETRYCANCEL, 'R', IDRETRY},
               Case{MB_ABORTRETRYIGNORE, 'I', IDIGNORE})) {
        const HWND owner = Make("owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
        SetTimer(owner, each.key, USER_TIMER_MINIMUM, [](HWND window, UINT, UINT_PTR key, DWORD) {
            KillTimer(window, key);
            EXPECT_FALSE(IsWindowEnabled(window));
            Key(GetActiveWindow(), static_cast<UINT>(key), key < 0x30 ? u"" : std::u16string(1, static_cast<char16_t>(key + 32)));
        });
        EXPECT_EQ(
            MessageBoxA(owner, "A long question, so long that it needs more lines than one to be said. Is it?", "Box", each.type),
            each.answer);
        EXPECT_TRUE(IsWindowEnabled(owner));
        DestroyWindow(owner);
    }
}

TEST_F(ScreenTest, FilesAreAskedForByTheDesktop) {
    const HWND owner = Make("owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, kPlace);
    char path[64] = "/somewhere/old.odb";
    OPENFILENAMEA asked{};
    asked.lStructSize = sizeof asked;
    asked.hwndOwner = owner;
    asked.lpstrFilter = "Sessions\0*.odb;*.xml\0All\0*.*\0";
    asked.lpstrFile = path;
    asked.nMaxFile = sizeof path;
    asked.lpstrDefExt = "odb";
    asked.Flags = OFN_OVERWRITEPROMPT;
    EXPECT_FALSE(GetSaveFileNameA(&asked));  // given up
    ASSERT_EQ(m_screen.questions.size(), 1u);
    EXPECT_EQ(m_screen.questions[0].folder, "/somewhere");
    EXPECT_EQ(m_screen.questions[0].name, "old.odb");
    ASSERT_EQ(m_screen.questions[0].kinds.size(), 2u);
    EXPECT_EQ(m_screen.questions[0].kinds[0].patterns, "*.odb;*.xml");
    EXPECT_TRUE(IsWindowEnabled(owner));

    m_screen.answers = {"/nowhere at all/new"};
    EXPECT_TRUE(GetSaveFileNameA(&asked));
    EXPECT_EQ(std::string(path), "/nowhere at all/new.odb");
    EXPECT_EQ(asked.nFileExtension, 20);
    // A bare name gets the ending of the kind that was chosen, the usual one where that kind has none.
    asked.lpstrFilter = "Archive\0*.odb\0XML\0*.xml;*.txt\0All\0*.*\0";
    for (const auto& [kind, end] : Table(std::pair{0, ".odb"}, std::pair{1, ".xml"}, std::pair{2, ".odb"})) {
        m_screen.kind = static_cast<size_t>(kind);
        m_screen.answers = {"/nowhere at all/new"};
        EXPECT_TRUE(GetSaveFileNameA(&asked));
        EXPECT_EQ(std::string(path), std::string("/nowhere at all/new") + end);
        EXPECT_EQ(asked.nFilterIndex, static_cast<DWORD>(kind) + 1);
    }
    m_screen.kind = 0;
    // The name with its extension is there: nobody was asked about that one, so the question comes again.
    const TestFolder folder;
    folder.Write("a.odb", "");
    m_screen.questions.clear();
    m_screen.answers = {folder.Path("a"), folder.Path("b.odb")};
    char longer[256] = "";
    asked.lpstrFile = longer;
    asked.nMaxFile = sizeof longer;
    EXPECT_TRUE(GetSaveFileNameA(&asked));
    EXPECT_EQ(std::string(longer), folder.Path("b.odb"));
    ASSERT_EQ(m_screen.questions.size(), 2u);
    EXPECT_EQ(m_screen.questions[1].name, "a.odb");
    asked.lpstrFile = path;
    asked.nMaxFile = sizeof path;
    m_screen.answers = {"/nowhere at all/much too long a name, which no buffer of sixty-four bytes can hold.odb"};
    EXPECT_FALSE(GetOpenFileNameA(&asked));
}

TEST_F(ScreenTest, WindowsFollowTheLooksOfTheDesktop) {
    const HWND label = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, 20, 20, nullptr, nullptr, nullptr, nullptr);
    Idle();
    for (const bool dark : {true, false}) {
        DesktopLooks looks;
        looks.dark = dark;
        TheScreenHost().SetLooks(looks);
        Idle();
        EXPECT_EQ(PixelShown(label, 10, 10) & 0xFFFFFF, PixelOf(GetSysColor(COLOR_BTNFACE))) << dark;
        EXPECT_EQ((GetSysColor(COLOR_BTNFACE) & 0xFF) < 128, dark);
    }
    DestroyWindow(label);
}
