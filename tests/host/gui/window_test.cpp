// The window in use: gestures, commands, and what goes wrong in the middle of a drag. The same on both homes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <tuple>

#include "frame/app_stock.h"
#include "host/gui/empty_page.h"
#include "host/gui/menu_commands.h"
#include "host/gui/recent_files.h"
#include "host/gui/unsaved_recording.h"
#include "host/logger/logger_file.h"
#include "host/session/channel_intervals.h"
#include "host/session/database_file.h"
#include "host/session/gap_list.h"
#include "host/session/pointed_value.h"
#include "host/session/value_text.h"
#include "record/recorder.h"
#include "tests/host/gui/hands.h"
#include "tests/support/test_folder.h"

void Hands::WriteSession(const std::string& path, int readings) {
    CPropertyDB description, db;
    const char* const channels[][2] = {{"Air", "°C"}, {"Humidity", "%"}, {"Soil", "°C"}, {"Wind", "km/h"}};
    description.SetValue("sName", "Station");
    for (int i = 0; i < 4; ++i) {
        const std::string at = "Channels." + std::to_string(i + 1);
        description.SetValue((at + ".sName").c_str(), channels[i][0]);
        description.SetValue((at + ".sUnit").c_str(), channels[i][1]);
    }
    Session session(description, "COM1");
    for (int i = 0; i < readings; ++i) {
        CDoubleArray values;
        for (int k = 0; k < 4; ++k) values.Add(10.0 * k + 5 * std::sin(i * 0.05 * (k + 1)) + 8);
        __timeb64 stamp = {};
        stamp.time = 1'767'260'000 + i * 60;
        session.Add(CVXTTime(stamp), values);
    }
    session.Store(db);
    db.BeginUsing("Chart.Tags.Comment #0");
    db.SetValue("sText", "Rain");
    db.SetValue("fLeft", 0.25f);
    db.SetValue("fTop", 0.5f);
    db.EndUsing();
    StoreDatabase(path, db);
}

namespace {
// What a test does while a drag is under way: called by a timer, which the tracker's loop serves.
std::function<void()> g_meanwhile;
void CALLBACK Meanwhile(HWND, UINT, UINT_PTR id, DWORD) {
    if (::GetCapture() == nullptr) return;  // it has not begun
    ::KillTimer(nullptr, id);
    if (const auto work = std::exchange(g_meanwhile, nullptr)) work();
}

// Gives up every dialog over a window, while it lives.
class DialogsGivenUp {
public:
    explicit DialogsGivenUp(HWND window) : m_timer(::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, GiveUp)) { s_window = window; }
    ~DialogsGivenUp() { ::KillTimer(nullptr, m_timer); }
    DialogsGivenUp(const DialogsGivenUp&) = delete;
    DialogsGivenUp& operator=(const DialogsGivenUp&) = delete;
    static inline int count = 0;

private:
    static void CALLBACK GiveUp(HWND, UINT, UINT_PTR, DWORD) {
        const HWND popup = ::GetActiveWindow();
        if (popup == nullptr || popup == s_window || ::GetWindow(popup, GW_OWNER) != s_window) return;
        ++count;
        ::PostMessageA(popup, WM_COMMAND, IDCANCEL, 0);
    }
    static inline HWND s_window = nullptr;
    UINT_PTR m_timer;
};

class WindowTest : public testing::Test, protected TestFolder {
protected:
    WindowTest() {
        Hands::WriteSession(path);
        hands.window->Open(path);
        hands.Pump();
    }
    // A drag in the middle of which `work` is done. It ends by itself, or `work` ends it.
    void DragWhile(POINT a, POINT b, std::function<void()> work) {
        g_meanwhile = std::move(work);
        const UINT_PTR timer = ::SetTimer(nullptr, 0, 10, Meanwhile);
        hands.Press(a, b);
        hands.Pump();
        ::KillTimer(nullptr, timer);
        EXPECT_EQ(std::exchange(g_meanwhile, nullptr), nullptr) << "no drag at " << a.x << "," << a.y;
        EXPECT_EQ(::GetCapture(), nullptr);
    }
    void Release(POINT at) { hands.Point(WM_LBUTTONUP, at); }
    // A place of each part that can be dragged, and where to.
    std::vector<std::pair<POINT, POINT>> Drags() {
        const ViewParts& parts = hands.Parts();
        std::vector<std::pair<POINT, POINT>> drags{{Hands::Middle(parts.plot), {parts.plot.left + 9, parts.plot.top + 9}},
                                                   {Hands::Middle(parts.tags[0]), {parts.plot.right - 60, parts.plot.top + 30}},
                                                   {Hands::Middle(hands.window->BarRect()), {350, 100}}};
        for (const ViewParts::Axis* axis : {&parts.axes[0], &parts.axes[1], &parts.time}) {
            for (const RECT* rect : {&axis->zoom, &axis->rubber, &axis->drag}) {
                if (!::IsRectEmpty(rect)) drags.push_back({Hands::Middle(*rect), {rect->left + 2, rect->top + 2}});
            }
        }
        drags.push_back({Hands::Middle(parts.axes[0].drag), Hands::Middle(parts.axes[1].drag)});
        const RECT column = hands.window->List().ColumnRect(0), bar = hands.window->BarRect();
        drags.push_back({{bar.right + column.right, 8}, {bar.right + column.right + 40, 8}});
        return drags;
    }

    const std::string path = Path("session.odb");
    Hands hands;
};

TEST_F(WindowTest, EachGestureIsOneNamedStep) {
    const ViewParts parts = hands.Parts();
    const auto step = [&](Text name) {
        EXPECT_TRUE(hands.History().CanUndo()) << Say(name);
        if (!hands.History().CanUndo()) return;
        EXPECT_EQ(Say(hands.History().UndoName()), Say(name));
        const auto changed = hands.Pixels();
        ASSERT_TRUE(hands.window->Command(kCommandUndo)) << Say(name);
        EXPECT_FALSE(hands.History().CanUndo()) << Say(name);
        EXPECT_NE(hands.Difference(hands.Pixels(), changed), "") << Say(name);
        EXPECT_NE(hands.window->MenuText(kCommandRedo).find(Say(name)), std::string::npos);
    };
    const auto before = hands.Pixels();
    const POINT middle = Hands::Middle(parts.plot), corner = {parts.plot.left + 20, parts.plot.top + 20};
    const auto rubber = [&](int axis) {
        return Hands::Middle(axis < 0 ? parts.time.rubber : parts.axes[static_cast<size_t>(axis)].rubber);
    };

    hands.Drag(corner, middle);
    step(Text::StepZoom);
    hands.Drag(corner, middle, true);
    step(Text::StepSelect);
    POINT at = Hands::Middle(parts.axes[0].zoom);
    hands.Drag(at, {at.x, at.y + 50});
    step(Text::StepZoomAxis);
    for (const bool shift : {false, true}) {
        for (const bool control : {false, true}) {
            at = rubber(0);
            hands.Drag(at, {at.x, at.y + 40}, shift, control);
            step(Text::StepStretchAxis);
            at = rubber(kTimeAxis);
            hands.Drag(at, {at.x + 40, at.y}, shift, control);
            step(Text::StepStretchAxis);
        }
    }
    hands.Drag(Hands::Middle(parts.axes[0].drag), Hands::Middle(parts.axes[1].drag));
    step(Text::StepSwapAxes);
    at = Hands::Middle(parts.tags[0]);
    hands.Drag(at, {at.x + 30, at.y - 20});
    step(Text::StepMoveTag);
    at = Hands::Middle(hands.window->BarRect());
    hands.Drag(at, {at.x - 30, at.y});
    step(Text::StepPane);
    hands.DoubleClick(corner);
    hands.Type("Något");
    hands.Key(VK_RETURN);
    EXPECT_EQ(hands.State().tags.back().text, "Något");
    step(Text::StepAddTag);
    hands.DoubleClick(Hands::Middle(parts.tags[0]));
    hands.Type("!");
    hands.Key(VK_RETURN);
    EXPECT_EQ(hands.State().tags[0].text, "Rain!");
    step(Text::StepEditTag);
    hands.Point(WM_MOUSEWHEEL, middle, 2 * WHEEL_DELTA);
    hands.Pump();
    EXPECT_EQ(hands.State().time, std::nullopt);
    step(Text::StepZoom);
    hands.Hold(false, true, TRUE);
    hands.Point(WM_MOUSEWHEEL, middle, -WHEEL_DELTA);
    hands.Hold(false, true, FALSE);
    hands.Pump();
    EXPECT_NE(hands.State().time, std::nullopt);
    EXPECT_EQ(hands.State().axes[0].range, std::nullopt);
    step(Text::StepZoom);
    EXPECT_EQ(hands.Difference(hands.Settled(), before), "");
}

TEST_F(WindowTest, TheKeyboardDoesWhatThePointerDoes) {
    const auto before = hands.Pixels();
    const auto did = [&](Text step) {
        ASSERT_TRUE(hands.History().CanUndo()) << Say(step);
        EXPECT_EQ(Say(hands.History().UndoName()), Say(step));
        hands.Key('Z', false, true);
        EXPECT_FALSE(hands.History().CanUndo());
    };
    struct Case {
        int tabs;
        UINT key;
        Text step;
        bool shift = false, control = false;
    };
    // One Tab: the time axis; then three axes, the tag.
    const Case cases[] = {{0, VK_RIGHT, Text::StepPan},
                          {0, VK_ADD, Text::StepZoom},
                          {1, VK_LEFT, Text::StepPan},
                          {1, VK_RIGHT, Text::StepStretchAxis, true},
                          {2, VK_UP, Text::StepStretchAxis, false, true},
                          {2, VK_SUBTRACT, Text::StepZoomAxis},
                          {2, VK_NEXT, Text::StepSwapAxes},
                          {5, VK_DOWN, Text::StepMoveTag},
                          {5, VK_DELETE, Text::StepRemoveTag},
                          {0, 'R', Text::StepSelect, false, true}};
    for (const Case& one : cases) {
        hands.Key(VK_ESCAPE);
        for (int i = 0; i < one.tabs; ++i) hands.Key(VK_TAB);
        hands.Key(one.key, one.shift, one.control);
        did(one.step);
    }
    // What a menu sends.
    for (const auto& [command, step] : {std::pair(kCommandZoomIn, Text::StepZoom), std::pair(kCommandSelect, Text::StepSelect)}) {
        ::SendMessageA(hands.window->m_hWnd, WM_COMMAND, command, 0);
        did(step);
    }
    hands.Key('Y', false, true);
    ASSERT_TRUE(hands.State().selection);
    hands.Key(VK_ESCAPE);
    hands.Key(VK_TAB, true);  // backwards: the selection
    hands.Key(VK_RIGHT);
    hands.Key(VK_RETURN);
    EXPECT_FALSE(hands.State().selection);
    EXPECT_TRUE(hands.State().time);
    hands.Key(VK_HOME);
    EXPECT_FALSE(hands.State().time);
    // F6: the bar, the list, and back.
    hands.Key(VK_F6);
    hands.Key(VK_LEFT);
    EXPECT_EQ(hands.History().UndoName(), Text::StepPane);
    hands.Key(VK_F6);
    hands.Key(VK_RIGHT, true);
    EXPECT_EQ(hands.History().UndoName(), Text::StepColumn);
    hands.Key(VK_SPACE);
    EXPECT_EQ(hands.State().hidden.size(), 1u);
    hands.Key(VK_F6);
    while (hands.History().CanUndo()) hands.Key('Z', false, true);
    hands.Key(VK_ESCAPE);
    EXPECT_EQ(hands.Difference(hands.Settled(), before), "");
}

TEST_F(WindowTest, WhatHappensInTheMiddleOfADragLeavesNoTrace) {
    const auto before = hands.Pixels();
    const auto undo = [&] {
        while (hands.window->Command(kCommandUndo)) {
        }
    };
    const std::pair<const char*, std::function<void()>> happens[] = {
        {"cancelled by a key",
         [&] {
             ::OrvikPostKey(hands.window->m_hWnd, VK_ESCAPE, TRUE);
             ::OrvikPostKey(hands.window->m_hWnd, VK_ESCAPE, FALSE);
         }},
        {"cancelled by a second button",
         [&] {
             hands.Point(WM_RBUTTONDOWN, {30, 30});
             hands.Point(WM_RBUTTONUP, {30, 30});
         }},
        {"the capture is lost", [] { ::ReleaseCapture(); }},
        {"it leaves the window, by far, and ends there",
         [&] {
             hands.Point(WM_MOUSEMOVE, {-3000, 20000});
             hands.Point(WM_LBUTTONUP, {30000, -3000});
         }},
        {"the session's data come anew; commands of the menu are refused meanwhile",
         [&] {
             EXPECT_FALSE(hands.window->Command(kCommandResetAll) || hands.window->Command(kCommandUndo));
             hands.window->Chart().DataChanged();
         }},
        {"the plot shrinks to nothing, and comes back", [&] {
             for (const SIZE small : {SIZE{3, 30}, SIZE{130, 30}, SIZE{200, 90}}) {
                 hands.window->SetClientSize(small);
                 hands.Pixels();
             }
             hands.window->SetClientSize({640, 420});
         }}};
    for (const auto& [a, b] : Drags()) {
        for (const auto& [what, work] : happens) {
            DragWhile(a, b, [&, end = b, then = work] {
                then();
                Release(end);
            });
            hands.Pump();
            if (*what == 'c') {
                EXPECT_FALSE(hands.History().CanUndo()) << what << " " << a.x << "," << a.y;
            }
            undo();
            EXPECT_EQ(hands.Difference(hands.Settled(), before), "") << what << " " << a.x << "," << a.y;
        }
    }
}

TEST_F(WindowTest, AWindowMayGoInTheMiddleOfADrag) {
    const size_t count = Drags().size();
    for (size_t i = 0; i < count; ++i) {
        const auto [a, b] = Drags()[i];
        DragWhile(a, b, [&] { hands.window->DestroyWindow(); });
        EXPECT_EQ(hands.window->m_hWnd, nullptr);
        hands.window.reset();
        hands = Hands();
        hands.window->Open(path);
        hands.Pump();
    }
}

TEST_F(WindowTest, ThePointerTellsWhatADragWouldDo) {
    hands.window->Command(kCommandSelect);
    const ViewParts parts = hands.Parts();
    const RECT selection = parts.selection.GetPosition(), bar = hands.window->BarRect();
    const RECT column = hands.window->List().ColumnRect(0);
    struct Case {
        POINT at;
        HCURSOR cursor, shift = cursor, control = cursor;
    };
    const HCURSOR arrow = ::LoadCursorA(nullptr, IDC_ARROW);
    const POINT free = {selection.right + 20, selection.bottom + 20};
    for (const Case& one :
         std::initializer_list<Case>{{free, hCursorCursor},
                                     {Hands::Middle(selection), hSizeAllCursor},
                                     {{selection.left + 5, selection.top + 5}, hSizeNWSECursor},
                                     {{selection.right - 5, selection.top + 5}, hSizeNESWCursor},
                                     {{parts.tags[0].left + 2, parts.tags[0].top + 2}, hTextMoveCursor},
                                     {Hands::Middle(parts.time.zoom), hZoomXCursor},
                                     {Hands::Middle(parts.axes[0].zoom), hZoomYCursor},
                                     {Hands::Middle(parts.time.rubber), hMoveXExtCursor, hMoveXOrgCursor, hMoveXCursor},
                                     {Hands::Middle(parts.axes[1].rubber), hMoveYExtCursor, hMoveYOrgCursor, hMoveYCursor},
                                     {Hands::Middle(parts.axes[0].drag), hDragCursor},
                                     {Hands::Middle(bar), hCurVSplitter},
                                     {{bar.right + column.right, 8}, hCurSizeColumn},
                                     {{2, 2}, arrow}}) {
        for (const auto& [cursor, shift, control] :
             {std::tuple{one.cursor, false, false}, std::tuple{one.shift, true, false}, std::tuple{one.control, false, true}}) {
            ::SetCursor(nullptr);
            hands.Hold(shift, control, TRUE);
            hands.Point(WM_MOUSEMOVE, one.at);
            hands.Hold(shift, control, FALSE);
            hands.Pump();
            EXPECT_EQ(::GetCursor(), cursor) << one.at.x << "," << one.at.y << " " << shift << control;
            EXPECT_NE(cursor, nullptr) << one.at.x << "," << one.at.y;
        }
    }
}

// However it is zoomed, and whatever is hidden: a comment stands at its time, and at its value on its channel's axis.
TEST_F(WindowTest, ACommentStaysAtItsChannelsValue) {
    const auto stands = [&](size_t number, const char* step) {
        const ViewParts& parts = hands.Parts();
        const ChartTag& tag = hands.State().tags[number];
        const auto channel =
            std::find_if(parts.channels.begin(), parts.channels.end(), [&](const auto& one) { return one.key == tag.channel; });
        ASSERT_NE(channel, parts.channels.end());
        const RECT &plot = parts.plot, &at = parts.tags[number];
        const auto& values = channel->mapping;
        const auto& times = parts.time.mapping;
        const double y =
            plot.bottom - 1 - (tag.value - values.origin) / (values.extent - values.origin) * (plot.bottom - 1 - plot.top);
        const double seconds = static_cast<double>(tag.time) / 1e6 - 1'767'260'000;
        const double x = plot.left + (seconds - times.origin) / (times.extent - times.origin) * (plot.right - 1 - plot.left);
        if (x < plot.left || x > plot.right - 1 || y < plot.top || y > plot.bottom - 1) {
            EXPECT_TRUE(::IsRectEmpty(&at)) << step;
        } else {
            EXPECT_FALSE(::IsRectEmpty(&at)) << step;
            EXPECT_NEAR(at.left, std::min<double>(x, plot.right - 1 - (at.right - at.left)), 1) << step;
            EXPECT_NEAR(at.top, std::min<double>(y, plot.bottom - 1 - (at.bottom - at.top)), 1) << step;
        }
    };
    const auto both = [&](const char* step) {
        hands.Pixels();
        stands(0, step), stands(1, step);
    };
    const auto choose = [&](UINT command) {
        ::SendMessageA(hands.window->m_hWnd, WM_COMMAND, command, 0);
        hands.Pump();
    };
    const RECT plot = hands.Parts().plot;
    EXPECT_EQ(hands.State().tags[0].channel, "1");
    hands.Drag({plot.left + 5, plot.top + 10}, {plot.right - 40, plot.bottom - 10});
    hands.DoubleClick(Hands::Middle(plot));
    hands.Type("here");
    hands.Key(VK_RETURN);
    ASSERT_EQ(hands.State().tags.size(), 2u);
    const std::vector<ChartTag> tags = hands.State().tags;
    EXPECT_NEAR(hands.Parts().tags[1].top, Hands::Middle(plot).y, 1);
    both("placed while zoomed");
    hands.Point(WM_MOUSEWHEEL, Hands::Middle(plot), 3 * WHEEL_DELTA);
    hands.Pump();
    both("zoomed values");
    choose(kCommandResetAll);
    both("reset");
    hands.Point(WM_MOUSEWHEEL, Hands::Middle(plot), -2 * WHEEL_DELTA);
    hands.Pump();
    const auto before = hands.Parts().channels;
    for (const UINT channel : {0u, 2u, 1u}) {
        choose(kCommandChannels + channel);
        both("hidden");
        for (size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(hands.Parts().channels[i].mapping.extent, before[i].mapping.extent) << "a hidden axis keeps its range";
    }
    EXPECT_EQ(hands.State().tags, tags);
}

TEST_F(WindowTest, KeepsItsViewInTheSession) {
    const ViewParts parts = hands.Parts();
    hands.Drag(Hands::Middle(parts.plot), {parts.plot.right - 5, parts.plot.bottom - 5});
    hands.Drag(Hands::Middle(parts.axes[0].drag), Hands::Middle(parts.axes[2].drag));
    hands.Drag({hands.Parts().plot.left + 30, hands.Parts().plot.top + 30},
               {hands.Parts().plot.left + 90, hands.Parts().plot.top + 90}, true);
    hands.Key(VK_INSERT);
    hands.Type("kept");
    hands.Key(VK_RETURN);
    hands.Drag(Hands::Middle(hands.window->BarRect()), {300, 100});
    hands.window->Chart().SetFocusMark({});
    const ViewState state = hands.State();
    EXPECT_EQ(state.tags.size(), 2u);
    EXPECT_TRUE(state.time && state.selection && state.axes[0].unit != "°C");
    const auto picture = hands.Settled();
    EXPECT_TRUE(hands.window->Document().IsModified());
    ASSERT_TRUE(hands.window->SaveTo(path));
    EXPECT_FALSE(hands.window->Document().IsModified());
    hands.window.reset();
    Hands again;
    again.window->Open(path);
    EXPECT_EQ(again.State(), state);
    EXPECT_EQ(again.Difference(again.Settled(), picture), "");
    EXPECT_FALSE(again.History().CanUndo());
}

TEST_F(WindowTest, AThousandGesturesUndoneGiveTheFirstPictureBack) {
    const auto before = hands.Pixels();
    std::mt19937 random(20261121);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const auto anywhere = [&] { return POINT{below(700) - 30, below(460) - 20}; };
    constexpr UINT kKeys[] = {VK_TAB,    VK_LEFT,  VK_RIGHT, VK_UP,     VK_DOWN,  VK_ADD, VK_SUBTRACT, VK_HOME, VK_DELETE,
                              VK_RETURN, VK_PRIOR, VK_NEXT,  VK_INSERT, VK_SPACE, VK_F6,  VK_ESCAPE,   VK_F2};
    int cancels = 0;
    const DialogsGivenUp givenUp(hands.window->m_hWnd);
    for (int i = 0; i < 1000; ++i) {
        const int kind = below(20);
        if (kind < 12) {
            hands.Hold(kind % 4 == 1, kind % 4 == 2, TRUE);
            const POINT a = anywhere(), b = anywhere();
            hands.Press(a, b);
            for (int k = below(3); k > 0; --k) hands.Point(WM_MOUSEMOVE, anywhere());
            if (below(4) == 0) {
                ++cancels;
                below(2) == 0 ? void(::OrvikPostKey(hands.window->m_hWnd, VK_ESCAPE, TRUE)) : hands.Point(WM_RBUTTONDOWN, b);
                ::OrvikPostKey(hands.window->m_hWnd, VK_ESCAPE, FALSE);
                hands.Point(WM_RBUTTONUP, b);
            }
            hands.Point(WM_LBUTTONUP, b);
            hands.Hold(kind % 4 == 1, kind % 4 == 2, FALSE);
        } else if (kind < 14) {
            hands.Hold(below(3) == 0, below(3) == 0, TRUE);
            hands.Point(WM_MOUSEWHEEL, anywhere(), (below(7) - 3) * WHEEL_DELTA);
            hands.Hold(true, true, FALSE);
        } else if (kind < 15) {
            hands.DoubleClick(anywhere());
            hands.Type("text");
            hands.Key(below(3) == 0 ? VK_ESCAPE : VK_RETURN);
        } else if (kind < 19) {
            hands.Key(kKeys[below(static_cast<int>(std::size(kKeys)))], below(4) == 0, below(4) == 0);
        } else {
            hands.window->Command(below(2) == 0 ? kCommandUndo : below(2) == 0 ? kCommandRedo : kCommandSelect);
        }
        hands.Pump();
        ASSERT_EQ(::GetCapture(), nullptr) << i;
    }
    EXPECT_GT(cancels, 50);
    EXPECT_GT(DialogsGivenUp::count, 0);
    hands.window->Chart().EndWriting(true);
    const ViewState last = hands.State();
    EXPECT_TRUE(hands.History().CanUndo());
    const auto lastPicture = hands.Settled();
    while (hands.window->Command(kCommandUndo)) {
    }
    EXPECT_EQ(hands.Difference(hands.Settled(), before), "");
    while (hands.window->Command(kCommandRedo)) {
    }
    EXPECT_EQ(hands.State(), last);
    EXPECT_EQ(hands.Difference(hands.Settled(), lastPicture), "");
}
}  // namespace

// What a window that was killed had downloaded is found by the next one, until it is saved.
TEST_F(WindowTest, AnUnsavedDownloadIsFoundAgain) {
    static std::string setting;
    setting = "ORVIK_UNSAVED=" + Path("unsaved");
    ::putenv(setting.data());
    Hands second;
    second.window->OpenUnsaved();
    EXPECT_FALSE(second.window->Document().HasSession());
    {
        CPropertyDB facts;
        facts.SetValue("Session.sLogger", "Inlet");
        facts.SetValue("Channels.1.sName", "Level");
        CRecorder recorder;
        ASSERT_EQ(recorder.Create(NewUnsavedRecording(), facts), 0u);
        for (int i = 0; i < 3; ++i) {
            const double value = i;
            recorder.AddReading(1'000'000 * (i + 1), &value);
        }
        EXPECT_TRUE(UnsavedRecordings().empty()) << "somebody records into it";
    }
    ASSERT_EQ(UnsavedRecordings().size(), 1u);
    second.window->OpenUnsaved();
    ASSERT_TRUE(second.window->Document().HasSession());
    EXPECT_EQ(second.window->Document().GetSession()->Count(), 3u);
    EXPECT_TRUE(second.window->Document().IsModified());
    EXPECT_TRUE(second.window->Document().Path().empty());
    const std::string file = Path("kept.odb");
    ASSERT_TRUE(second.window->SaveTo(file));
    EXPECT_FALSE(second.window->Document().IsModified());
    ASSERT_TRUE(second.window->Open(file));
    EXPECT_EQ(second.window->Document().GetSession()->Count(), 3u);
    EXPECT_TRUE(UnsavedRecordings().empty()) << "it goes when nobody reads it any more";
}

// The list of files is its user's, whichever window asks; what is gone is told of and leaves it.
TEST_F(WindowTest, WhatIsCopiedIsThereForOtherPrograms) {
    const UINT html = ::RegisterClipboardFormatA("HTML Format");
    const auto text = [] {
        std::string out;
        if (!::OpenClipboard(nullptr)) return out;
        if (const HANDLE memory = ::GetClipboardData(CF_UNICODETEXT)) {
            const auto* const units = static_cast<const WCHAR*>(::GlobalLock(memory));
            for (size_t i = 0; units[i] != 0; ++i) out += units[i] < 128 ? static_cast<char>(units[i]) : '?';
            ::GlobalUnlock(memory);
        }
        ::CloseClipboard();
        return out;
    };
    const auto lines = [](const std::string& all) { return std::count(all.begin(), all.end(), '\n'); };
    EXPECT_TRUE(hands.window->Command(kCommandCopy));
    EXPECT_EQ(text().substr(0, 35), "time\tAir [?C]\tHumidity [%]\tSoil [?C");
    EXPECT_EQ(lines(text()), 201);
    EXPECT_TRUE(::IsClipboardFormatAvailable(CF_DIB));
    EXPECT_TRUE(::IsClipboardFormatAvailable(html));

    // Of what is shown alone.
    ViewState part = hands.window->Document().State();
    part.time = ViewRange{0, 600};
    part.hidden = {hands.window->Document().GetSession()->Channels()[1].key};
    hands.window->Document().History().Do(Text::StepZoom, part);
    hands.window->Chart().StateChanged();
    EXPECT_TRUE(hands.window->Command(kCommandCopy));
    EXPECT_EQ(lines(text()), 12);
    EXPECT_EQ(text().find("Humidity"), std::string::npos);

    ::SetFocus(hands.window->List().m_hWnd);
    EXPECT_TRUE(hands.window->Command(kCommandCopy));
    EXPECT_EQ(text().substr(0, 4), "Air\t");
    EXPECT_FALSE(::IsClipboardFormatAvailable(CF_DIB));

    // A table that nobody could use stays away, and the picture is there.
    ::SetFocus(hands.window->Chart().m_hWnd);
    Hands::WriteSession(path, 50'000);
    hands.window->Open(path);
    EXPECT_TRUE(hands.window->Command(kCommandCopy));
    EXPECT_FALSE(::IsClipboardFormatAvailable(CF_UNICODETEXT));
    EXPECT_TRUE(::IsClipboardFormatAvailable(CF_DIB));
}

TEST_F(WindowTest, TextIsTakenAsAnUnsavedSessionAndDescriptionsAreToldFromSessions) {
    Write("week.csv", "time,Air [K]\n2026-01-01T00:00:00.000000Z,1.5\n2026-01-01T00:01:00.000000Z,2.5\n");
    EXPECT_TRUE(hands.window->Import(Path("week.csv")));
    EXPECT_EQ(hands.window->Document().GetSession()->Count(), 2u);
    EXPECT_TRUE(hands.window->Document().IsModified());
    EXPECT_TRUE(hands.window->Document().Path().empty());
    EXPECT_EQ(hands.window->Document().Title(), "week");
    Write("bad.csv", "time,Air\nnever,1\n");
    EXPECT_THROW(hands.window->Import(Path("bad.csv")), Failure);
    EXPECT_EQ(hands.window->Document().GetSession()->Count(), 2u);

    CPropertyDB description;
    description.SetValue("sFamily", "Modbus");
    StoreDatabase(Path("logger.xml"), description);
    EXPECT_TRUE(IsLoggerDescription(Path("logger.xml")));
    for (const std::string& other : {path, Path("week.csv"), Path("none.xml")}) EXPECT_FALSE(IsLoggerDescription(other));
}

TEST_F(WindowTest, TheFilesThatWereOpenedLastAreOffered) {
    static std::string setting;
    setting = "APPDATA=" + Path("settings");
    ::putenv(setting.data());
    const RecentFiles files("recent"), others("recent");
    EXPECT_TRUE(files.All().empty());
    const std::string gone = Path("gone.odb");
    for (int i = 0; i < 10; ++i) files.Add(Path("år " + std::to_string(i) + ".odb"));
    others.Add(gone);
    files.Add(path);
    ASSERT_EQ(others.All().size(), RecentFiles::kMost);
    EXPECT_EQ(others.All()[2], Path("år 9.odb"));
    files.Add(gone);
    EXPECT_EQ(others.All()[0], gone);
    EXPECT_EQ(others.All()[1], path);
    EXPECT_EQ(others.All().size(), RecentFiles::kMost) << "once each";
    Hands second;
    EXPECT_FALSE(second.window->Command(kCommandRecent + RecentFiles::kMost));
    EXPECT_TRUE(second.window->Command(kCommandRecent));
    EXPECT_FALSE(second.window->Document().HasSession());
    EXPECT_EQ(files.All().size(), RecentFiles::kMost - 1);
    EXPECT_TRUE(second.window->Command(kCommandRecent + 1));
    EXPECT_EQ(second.window->Document().Path(), path);
    EXPECT_EQ(files.All()[0], path) << "a window of a script leaves no trace";
}

// Nearest readings, each channel's own; nothing where its line has a hole.
TEST_F(WindowTest, TheListShowsTheValuesUnderThePointer) {
    const double hole = std::numeric_limits<double>::quiet_NaN(), later = NotDueValue();
    const double air[] = {1, 2, hole, 4, 5, 6}, soil[] = {10, later, later, 40, later, later};
    CPropertyDB description;
    description.SetValue("Channels.1.sName", "Air");
    description.SetValue("Channels.2.sName", "Soil");
    Session session(description, "COM1");
    for (int i = 0; i < 6; ++i) {
        CDoubleArray values;
        values.Add(air[i]), values.Add(soil[i]);
        CVXTTime time;
        time.SetBinaryTime(1'000'000ll * (i + 1));
        session.Add(time, values);
    }
    const struct {
        double seconds;
        double air, soil;
        double told;  // whose time is told: of the reading that the values are of
    } cases[] = {{0.5, hole, hole, 0.5}, {0.95, 1, 10, 1}, {1.4, 1, 10, 1},  {1.6, 2, 10, 2},  {2.04, 2, 10, 2},  {2.5, hole, 10, 1},
                 {3, hole, 40, 4},       {3.96, 4, 40, 4}, {4.2, 4, hole, 4}, {5, 5, hole, 5}, {6.04, 6, hole, 6}, {6.2, hole, hole, 6.2}};
    RecordedNotes notes;
    CRecordedGap gap;
    gap.number = 1;
    gap.from = gap.until = 7'000'000;
    gap.cause = GC_DISK;
    gap.attempts = 1;
    notes.Add(gap);
    const auto later7 = [&] { return PointedText(session, notes, {7'500'000, 50'000}); };
    EXPECT_EQ(later7(), TimeTextOf(7'500'000)) << "a gap that took no reading";
    gap.missed = 3;
    notes.Add(gap);
    EXPECT_EQ(later7(), TimeTextOf(7'500'000) + ": " + CauseInWords(GC_DISK));
    for (const auto& one : cases) {
        const PointedTime at{static_cast<__int64>(one.seconds * 1e6), 50'000};
        const std::string cause = one.told == 6.2 ? ": " + CauseInWords(GC_DISK) : "";
        EXPECT_EQ(PointedText(session, notes, at), TimeTextOf(static_cast<__int64>(one.told * 1e6)) + cause) << one.seconds;
        for (const auto& [channel, wanted] : {std::pair(size_t{0}, one.air), std::pair(size_t{1}, one.soil)}) {
            const double got = ValueAt(session, channel, at);
            EXPECT_TRUE(got == wanted || (std::isnan(got) && std::isnan(wanted))) << one.seconds << " " << channel << " " << got;
        }
    }
    // By hand: the first reading of the session that is open stands at the left end of the plot.
    const auto text = [&](size_t channel) {
        return std::string(hands.window->List().GetItemText(static_cast<int>(channel), 1).GetString());
    };
    const std::string latest = text(0);
    const RECT plot = hands.Parts().plot;
    hands.Point(WM_MOUSEMOVE, {plot.left, plot.top + 5});
    hands.Pump();
    EXPECT_EQ(text(0), "8");
    EXPECT_EQ(text(1), "18");
    hands.Point(WM_MOUSEMOVE, {plot.left, plot.bottom + 20});
    hands.Pump();
    EXPECT_EQ(text(0), latest);
    EXPECT_FALSE(hands.History().CanUndo());
    // One that rests gets another time under it when the view changes: the drag ends where it does not begin.
    hands.Drag({plot.left, plot.top + 5}, {(plot.left + plot.right) / 2, plot.bottom - 5});
    POINT pointer{(plot.left + plot.right) / 2, plot.bottom - 5};
    ::ClientToScreen(hands.window->Chart().m_hWnd, &pointer);
    hands.window->Chart().PointAgain(pointer);
    EXPECT_NE(text(0), "8");
    EXPECT_NE(text(0), latest);
}

// What one can begin with is pressed where it is written, at any size.
TEST_F(WindowTest, TheEmptyPageIsPressed) {
    CClientDC dc(hands.window.get());
    for (const CRect& client : {CRect(0, 0, 800, 600), CRect(10, 20, 130, 90)}) {
        EmptyPage page;
        page.Draw(dc, client, 96);
        std::vector<UINT> found = {0};
        for (LONG y = client.top; y < client.bottom; ++y) {
            const UINT command = page.CommandAt({client.CenterPoint().x, y});
            if (command != found.back()) found.push_back(command);
        }
        EXPECT_EQ(found, (std::vector<UINT>{0, kCommandOpen, kCommandDownload, 0})) << client.Width();
        EXPECT_EQ(page.CommandAt({client.left, client.CenterPoint().y}), 0u);
    }
}
