// The window's dialogs: what they show, take and refuse, and the progress of long work. In the language of the process.
// The same on both homes.
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <limits>
#include <set>

#include "comm/task.h"
#include "host/gui/script_runner.h"
#include "host/logger/logger_file.h"
#include "host/session/database_file.h"
#include "res/ids.h"
#include "tests/host/gui/hands.h"
#include "tests/host/sentence_of.h"
#include "tests/support/dialog_fixture.h"
#include "tests/support/test_folder.h"
#include "time/locale_cache.h"
#include "time/span_text.h"
#include "toolkit/prop_list.h"

namespace {
using Step = std::function<void(HWND dialog)>;

// Does one step after the other with whatever dialog stands over the window; what is left open is closed and told.
class Answers {
public:
    Answers(HWND window, std::deque<Step> steps) : m_timer(::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, Tick)) {
        s_window = window;
        s_steps = std::move(steps);
    }
    ~Answers() {
        ::KillTimer(nullptr, m_timer);
        EXPECT_TRUE(s_steps.empty()) << "no dialog for what was to be answered";
    }
    Answers(const Answers&) = delete;
    Answers& operator=(const Answers&) = delete;

private:
    static void CALLBACK Tick(HWND, UINT, UINT_PTR, DWORD) {
        const HWND dialog = ::GetActiveWindow();
        if (s_busy || dialog == nullptr || dialog == s_window || ::GetWindow(dialog, GW_OWNER) != s_window ||
            !::IsWindowVisible(dialog))
            return;
        if (s_steps.empty()) {
            ADD_FAILURE() << "a dialog is left open";
            ::PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
            return;
        }
        const Step step = std::move(s_steps.front());
        s_steps.pop_front();
        s_busy = true;
        step(dialog);
        s_busy = false;
    }
    static inline HWND s_window = nullptr;
    static inline std::deque<Step> s_steps;
    static inline bool s_busy = false;
    UINT_PTR m_timer;
};

// The labels of fields, by their ids in the templates.
constexpr int kFromLabel = 1291, kToLabel = 1292, kPictureLabel = 1293, kFromTimeLabel = 1301, kFileLabel = 1321,
              kWidthLabel = 1322, kHeightLabel = 1323, kExportLabel = 1361, kDescriptionLabel = 1314, kPortLabel = 1311;

std::string FieldText(HWND dialog, int id) { return TextOf(::GetDlgItem(dialog, id)); }
void Press(HWND dialog, int id) {
    ::SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(::GetDlgItem(dialog, id)));
}
void Choose(HWND dialog, int first, int last, int id) {
    ::CheckRadioButton(dialog, first, last, id);
    Press(dialog, id);
}
std::string Resource(UINT id) {
    CString text;
    text.LoadString(id);
    return text.GetString();
}

class Dialogs : public testing::Test, protected TestFolder {
protected:
    Dialogs() {
        settings.Swedish();
        settings.Set(LOCALE_SDATE, "-"), settings.Set(LOCALE_STIME, ":");
        NlsToolsUpdate();
        Hands::WriteSession(path);
        hands.window->Open(path);
        hands.Pump();
        TellingHost::told.clear();
    }
    void Do(UINT command, std::deque<Step> steps) {
        const Answers answers(hands.window->m_hWnd, std::move(steps));
        EXPECT_TRUE(hands.window->Command(command));
    }
    // What is said of the field behind this label.
    static std::string Named(HWND dialog, int label, const std::string& told) {
        std::string name = FieldText(dialog, label);
        std::erase(name, '&');
        return Say(Text::FieldSaid, {name.substr(0, name.find(':')), told});
    }
    // What the system says, with what stood in the field.
    static std::string Exemplified(UINT id, const std::string& example) {
        return Say(Text::FieldExample, {Resource(id), example});
    }
    // A field with this text is refused when OK is pressed: told once in these words, its name first, focused and selected, the
    // dialog open, the view as it was.
    Step Refused(int label, int field, std::string text, std::string told) {
        return [=, this](HWND dialog) {
            const ViewState before = hands.State();
            const std::string old = FieldText(dialog, field);
            ::SetDlgItemTextA(dialog, field, text.c_str());
            ::SetFocus(::GetDlgItem(dialog, IDCANCEL));
            Press(dialog, IDOK);
            EXPECT_EQ(std::exchange(TellingHost::told, {}), std::vector<std::string>{Named(dialog, label, told)}) << text;
            EXPECT_EQ(::GetFocus(), ::GetDlgItem(dialog, field)) << text;
            DWORD from = 1, to = 0;
            ::SendMessageA(::GetFocus(), EM_GETSEL, reinterpret_cast<WPARAM>(&from), reinterpret_cast<LPARAM>(&to));
            EXPECT_TRUE(from == 0 && to == std::string_view(text).size()) << text;
            EXPECT_TRUE(::IsWindowVisible(dialog));
            EXPECT_EQ(hands.State(), before);
            EXPECT_FALSE(hands.History().CanUndo());
            ::SetDlgItemTextA(dialog, field, old.c_str());
        };
    }
    static Step Filled(std::vector<std::pair<int, std::string>> fields) {
        return [=](HWND dialog) {
            for (const auto& [field, text] : fields) ::SetDlgItemTextA(dialog, field, text.c_str());
            Press(dialog, IDOK);
        };
    }
    static Step Given(int id) {
        return [=](HWND dialog) { Press(dialog, id); };
    }
    // One step of this name, which undoing takes back to the last pixel; done again, saved and opened, it is there.
    void ExpectOneStep(Text name, const std::vector<COLORREF>& before) {
        ASSERT_TRUE(hands.History().CanUndo()) << Say(name);
        EXPECT_EQ(hands.History().UndoName(), name);
        const ViewState changed = hands.State();
        hands.window->Command(kCommandUndo);
        EXPECT_FALSE(hands.History().CanUndo()) << Say(name);
        EXPECT_EQ(hands.Difference(hands.Settled(), before), "") << Say(name);
        hands.window->Command(kCommandRedo);
        EXPECT_EQ(hands.State(), changed);
        ASSERT_TRUE(hands.window->SaveTo(path));
        hands.window->Open(path);
        EXPECT_EQ(hands.State(), changed) << Say(name);
    }

    static void Paint(HWND window) {
        ::RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    }

    RegionalSettings settings;
    const std::string path = Path("station.odb");
    Hands hands{{760, 460}};
};

TEST_F(Dialogs, EveryOneIsReachedByKeyFitsAndCanBeGivenUp) {
    const auto before = hands.Settled();
    const auto look = [&](const char* name) {
        return Step([=](HWND dialog) {
            ExpectUsable(dialog, name);
            Paint(dialog);
            ::PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
        });
    };
    for (const auto& [name, key] :
         {std::pair("range", 'G'), std::pair("time-range", 'T'), std::pair("picture", 'P'), std::pair("download", 'D'),
          std::pair("export", 'E'), std::pair("keys", static_cast<char>(VK_F1))}) {
        const Answers answers(hands.window->m_hWnd, {look(name)});
        hands.Key(static_cast<UINT>(key), key == 'P', key != VK_F1);
    }
    Do(kCommandAbout, {look("about")});
    // Alt+Enter: of the axis, or of the channel whose row has the keys; Enter there as well.
    for (const bool list : {false, true}) {
        ::SetFocus(list ? hands.window->List().m_hWnd : hands.window->Chart().m_hWnd);
        const Answers answers(hands.window->m_hWnd, {look("properties")});
        ::SendMessageA(::GetFocus(), WM_SYSKEYDOWN, VK_RETURN, 1 | (1 << 29));
    }
    EXPECT_FALSE(hands.History().CanUndo());
    EXPECT_TRUE(TellingHost::told.empty());
    EXPECT_EQ(hands.Difference(hands.Settled(), before), "");
    Paint(hands.window->m_hWnd);
}

TEST_F(Dialogs, AScriptThatLeavesOneOpenEndsAndSaysSo) {
    ScriptRunner runner(*hands.window, "my.txt", ParseScript("my.txt", "key escape\nkey Ctrl+G\nkey Tab"));
    EXPECT_EQ(SentenceOf([&] { runner.Run(path); }), Say(Text::ScriptLine, {"my.txt", "3", Say(Text::ScriptAsked)}));
    EXPECT_FALSE(hands.window->IsAsking());
    EXPECT_FALSE(hands.History().CanUndo());
}

TEST_F(Dialogs, ARangeIsReadInTheUsersFormatAndIsOneStep) {
    const auto before = hands.Settled();
    Do(kCommandRange, {[&](HWND dialog) {
                           const std::string told = Exemplified(IDS_BAD_NUMBER, FieldText(dialog, IDC_HOST_FROM));
                           Refused(kFromLabel, IDC_HOST_FROM, "1.5", told)(dialog);
                       },
                       [&](HWND dialog) {
                           const std::string told = Exemplified(IDS_BAD_NUMBER, FieldText(dialog, IDC_HOST_TO));
                           Refused(kToLabel, IDC_HOST_TO, "", told)(dialog);
                       },
                       Refused(kPictureLabel, IDC_HOST_PICTURE, "##,#x", Exemplified(IDS_BAD_NUMBER, "##,##")),
                       [&](HWND dialog) {
                           Refused(kToLabel, IDC_HOST_TO, FieldText(dialog, IDC_HOST_FROM).c_str(),
                                   Say(Text::RangeEmpty))(dialog);
                       },
                       Given(IDOK)});
    EXPECT_FALSE(hands.History().CanUndo()) << "nothing was changed";
    Do(kCommandRange, {Filled({{IDC_HOST_FROM, "-2,5"}, {IDC_HOST_PICTURE, "###,##"}})});
    ASSERT_TRUE(hands.State().axes[0].range);
    EXPECT_EQ(hands.State().axes[0].range->origin, -2.5);
    EXPECT_EQ(hands.State().axes[0].picture, "###,##");
    EXPECT_EQ(hands.window->List().GetItemText(0, 1).Right(3).GetAt(0), ',') << "two decimals";
    ExpectOneStep(Text::StepRange, before);
}

TEST_F(Dialogs, TimesGoToAnotherOrForASpan) {
    const auto before = hands.Settled();
    Do(kCommandTimeRange, {[](HWND dialog) { EXPECT_FALSE(::IsWindowEnabled(::GetDlgItem(dialog, IDC_HOST_SPAN))); },
                           [&](HWND dialog) {
                               const std::string told = Exemplified(IDS_BAD_TIME, FieldText(dialog, IDC_HOST_TIME));
                               Refused(kFromTimeLabel, IDC_HOST_TIME, "25:00", told)(dialog);
                           },
                           [&](HWND dialog) {
                               std::string told = Resource(IDS_BAD_DATE);
                               told.replace(told.find("%s"), 2, FieldText(dialog, IDC_HOST_DATE));
                               Refused(kFromTimeLabel, IDC_HOST_DATE, "1899-01-01", told)(dialog);
                           },
                           Refused(IDC_HOST_BY_TIME, IDC_HOST_TO_DATE, "1999-01-01", Say(Text::TimesBackwards)),
                           [](HWND dialog) {
                               Choose(dialog, IDC_HOST_BY_TIME, IDC_HOST_BY_SPAN, IDC_HOST_BY_SPAN);
                               EXPECT_TRUE(::IsWindowEnabled(::GetDlgItem(dialog, IDC_HOST_SPAN)));
                               EXPECT_FALSE(::IsWindowEnabled(::GetDlgItem(dialog, IDC_HOST_TO_DATE)));
                           },
                           [&](HWND dialog) {
                               const std::string told = Exemplified(IDS_BAD_SPAN, FieldText(dialog, IDC_HOST_SPAN));
                               Refused(IDC_HOST_BY_SPAN, IDC_HOST_SPAN, "5", told)(dialog);
                           },
                           Refused(IDC_HOST_BY_SPAN, IDC_HOST_SPAN, "0", Say(Text::SpanEmpty)), Given(IDOK)});
    EXPECT_FALSE(hands.History().CanUndo());
    CString hour;
    CVXTTimeSpanType hours = TST_HOURS;
    _NlsSetShortTimeSpan(hour, CVXTTimeSpan(5400, TST_SECONDS), &hours, -1);
    EXPECT_EQ(hour.Left(4), "1,5 ");
    Do(kCommandTimeRange, {[&](HWND dialog) {
           Choose(dialog, IDC_HOST_BY_TIME, IDC_HOST_BY_SPAN, IDC_HOST_BY_SPAN);
           ::SetDlgItemTextA(dialog, IDC_HOST_SPAN, hour);
           Press(dialog, IDOK);
       }});
    ASSERT_TRUE(hands.State().time);
    EXPECT_EQ(hands.State().time->origin, 0);
    EXPECT_EQ(hands.State().time->extent, 5400);
    ExpectOneStep(Text::StepTimeRange, before);
}

TEST_F(Dialogs, EachPropertyThatIsChangedIsAStep) {
    const auto before = hands.Settled();
    ::SetFocus(hands.window->List().m_hWnd);
    const auto list = [](HWND dialog) {
        return static_cast<CBCGPPropList*>(CWnd::FromHandlePermanent(::GetDlgItem(dialog, IDC_ORVIK_GRID)));
    };
    // A value as its user writes it: over the cell, taken by Enter.
    const auto write = [&](CBCGPPropList& grid, CBCGPProp* property, const char* text) {
        grid.SetCurSel(property);
        ASSERT_TRUE(grid.EditItem());
        HWND edit = ::GetWindow(grid.m_hWnd, GW_CHILD);
        for (char kind[32] = ""; edit != nullptr; edit = ::GetWindow(edit, GW_HWNDNEXT)) {
            ::GetClassNameA(edit, kind, sizeof kind);
            if (lstrcmpiA(kind, "Edit") == 0) break;
        }
        ASSERT_NE(edit, nullptr);
        ::SetWindowTextA(edit, text);
        grid.EndEditItem();
    };
    std::vector<Text> steps;
    const auto done = [&](Text name) {
        ASSERT_TRUE(hands.History().CanUndo());
        EXPECT_EQ(hands.History().UndoName(), name);
        EXPECT_TRUE(TellingHost::told.empty());
        steps.push_back(name);
    };
    const auto refused = [&](Text told, const ViewState& state) {
        EXPECT_EQ(std::exchange(TellingHost::told, {}), std::vector<std::string>{Say(told)});
        EXPECT_EQ(hands.State(), state);
    };
    Do(kCommandProperties, {[&](HWND dialog) {
           CBCGPPropList& grid = *list(dialog);
           CBCGPProp &axis = *grid.GetProperty(0), &air = *grid.GetProperty(1), &soil = *grid.GetProperty(2);
           CBCGPProp *const follows = axis.GetSubItem(1), *const from = axis.GetSubItem(2), *const to = axis.GetSubItem(3);
           EXPECT_EQ(grid.GetCurSel(), air.GetSubItem(0)) << "the row's own channel";
           write(grid, from, "-4,25");
           done(Text::StepRange);
           EXPECT_EQ(hands.State().axes[0].range->origin, -4.25);
           EXPECT_FALSE(follows->GetValue().Boolean());
           const ViewState ranged = hands.State();
           write(grid, to, "-4,25");
           refused(Text::RangeEmpty, ranged);
           EXPECT_EQ(to->GetValue().Real(), ranged.axes[0].range->extent) << "put back";
           write(grid, axis.GetSubItem(4), "@@@x");
           refused(Text::PictureWrong, ranged);
           write(grid, axis.GetSubItem(4), "@@");
           done(Text::StepPicture);
           write(grid, air.GetSubItem(0), "Luft");
           done(Text::StepName);
           EXPECT_EQ(hands.window->List().GetItemText(0, 0), "Luft");
           EXPECT_EQ(air.GetName(), "Luft");
           const ViewState named = hands.State();
           write(grid, air.GetSubItem(0), "  ");
           refused(Text::NameWrong, named);
           write(grid, soil.GetSubItem(2), "#102030");
           done(Text::StepColour);
           EXPECT_EQ(hands.State().channels[2].colour, RGB(0x10, 0x20, 0x30));
           EXPECT_EQ(hands.window->List().OnGetCellTextColor(2, 0), RGB(0x10, 0x20, 0x30));
           Paint(dialog);
           Press(dialog, IDOK);
       }});
    EXPECT_EQ(steps.size(), 4u);
    const ViewState changed = hands.State();
    ASSERT_TRUE(hands.window->SaveTo(path));
    for (size_t i = steps.size(); i-- > 0;) {
        EXPECT_EQ(hands.History().UndoName(), steps[i]);
        hands.window->Command(kCommandUndo);
    }
    EXPECT_FALSE(hands.History().CanUndo());
    EXPECT_EQ(hands.Difference(hands.Settled(), before), "");
    hands.window->Open(path);
    EXPECT_EQ(hands.State(), changed);
}

TEST_F(Dialogs, APictureHasTheSizeAndKindThatWereAsked) {
    const std::string file = Path("chart");
    Do(kCommandPicture, {Refused(kWidthLabel, IDC_HOST_WIDTH, "0", Say(Text::SidesRange, {std::to_string(kOrvikPictureSide)})),
                         [&](HWND dialog) {
                             const std::string told = Exemplified(IDS_NOT_WHOLE, FieldText(dialog, IDC_HOST_HEIGHT));
                             Refused(kHeightLabel, IDC_HOST_HEIGHT, "1,5", told)(dialog);
                         },
                         Refused(kFileLabel, IDC_HOST_FILE, "", Say(Text::FileEmpty)),
                         Refused(kFileLabel, IDC_HOST_FILE, Path("nowhere") + "/a.png", Say(Text::FolderNotThere, {Path("nowhere")})),
                         [&](HWND dialog) {
                             ::SetDlgItemTextA(dialog, IDC_HOST_FILE, (file + ".png").c_str());
                             Choose(dialog, IDC_HOST_PNG, IDC_HOST_PDF, IDC_HOST_SVG);
                             EXPECT_EQ(FieldText(dialog, IDC_HOST_FILE), file + ".svg");
                             Filled({{IDC_HOST_WIDTH, "500"}, {IDC_HOST_HEIGHT, "300"}})(dialog);
                         }});
    EXPECT_NE(BytesOf(file + ".svg").find("width=\"500\" height=\"300\""), std::string::npos);
    Do(kCommandPicture, {Filled({{IDC_HOST_FILE, file}, {IDC_HOST_WIDTH, "64"}, {IDC_HOST_HEIGHT, "48"}})});
    const std::string png = BytesOf(file + ".png");
    ASSERT_GT(png.size(), 24u);
    EXPECT_EQ(png.substr(16, 8), std::string("\0\0\0\x40\0\0\0\x30", 8));
    EXPECT_FALSE(hands.History().CanUndo());
}

TEST_F(Dialogs, ReadingsBecomeTextInEitherFormAndAllOrThoseShown) {
    ViewState part = hands.State();
    part.time = ViewRange{600, 1200};  // seconds: eleven of the readings, one a minute
    hands.History().Do(Text::StepTimeRange, part);
    hands.window->Chart().StateChanged();
    const struct {
        int form, part;
        size_t lines;
        const char *heading, *first;
    } cases[] = {
        {IDC_HOST_FOR_PROGRAMS, IDC_HOST_EXPORT_ALL, 201, "time,Air [°C],Humidity [%],Soil [°C],Wind [km/h]\n",
         "\n2026-01-01T09:33:20.000000Z,8,18,28,38\n"},
        {IDC_HOST_FOR_PROGRAMS, IDC_HOST_EXPORT_SHOWN, 12, "time,Air", "\n2026-01-01T09:43:20.000000Z,10.397"},
        {IDC_HOST_FOR_SHEETS, IDC_HOST_EXPORT_SHOWN, 12, "\xEF\xBB\xBFtime;Air", "\n2026-01-01 09:43:20,000;10,397"},
    };
    for (const auto& one : cases) {
        const std::string file = Path("values");
        Do(kCommandExport, {[&](HWND dialog) {
                                ::SetDlgItemTextA(dialog, IDC_HOST_FILE, "");
                                Press(dialog, IDOK);
                                EXPECT_EQ(std::exchange(TellingHost::told, {}),
                                          std::vector<std::string>{Named(dialog, kExportLabel, Say(Text::FileEmpty))});
                            },
                            [&](HWND dialog) {
                                Choose(dialog, IDC_HOST_FOR_PROGRAMS, IDC_HOST_FOR_SHEETS, one.form);
                                Choose(dialog, IDC_HOST_EXPORT_ALL, IDC_HOST_EXPORT_SHOWN, one.part);
                                Filled({{IDC_HOST_FILE, file}})(dialog);
                            }});
        const std::string text = BytesOf(file + ".csv");
        EXPECT_EQ(static_cast<size_t>(std::count(text.begin(), text.end(), '\n')), one.lines);
        EXPECT_EQ(text.substr(0, std::string(one.heading).size()), one.heading);
        EXPECT_NE(text.substr(0, 200).find(one.first), std::string::npos) << text.substr(0, 200);
    }
    EXPECT_TRUE(TellingHost::told.empty());
}

TEST_F(Dialogs, APageSaysThatNothingIsMissing) {
    Do(kCommandMissing, {[&](HWND dialog) {
           EXPECT_EQ(FieldText(dialog, IDC_HOST_KEYS), Say(Text::NothingMissing));
           Press(dialog, IDCANCEL);
       }});
}

// The sentences are those that `check` has.
TEST_F(Dialogs, ADownloadTellsWhatItsDescriptionLacksBeforeItBegins) {
    const std::string damaged = Path("damaged.xml"), unknown = Path("unknown.xml");
    std::ofstream(damaged) << "no description";
    {
        CPropertyDB db;
        db.SetValue("sFamily", "nobody");
        db.SetValue("Channels.1.sName", "Level");
        StoreDatabase(unknown, db);
    }
    const auto told = [&](const std::string& file) {
        const auto load = [&] {
            CPropertyDB db;
            LoadLoggerDescription(file, db);
            MakeLogger(static_cast<CHostApp&>(*AfxGetApp()), db);
        };
        return SentenceOf(load, file == damaged ? kFileFailed : kWrongUse);
    };
    const auto tried = [&](const std::string& file, const char* port, const std::string& result) {
        return Step([=](HWND dialog) {
            ::SetDlgItemTextA(dialog, IDC_HOST_DESCRIPTION, file.c_str());
            ::SetDlgItemTextA(dialog, IDC_HOST_PORT, port);
            Press(dialog, IDC_HOST_TEST);
            EXPECT_EQ(FieldText(dialog, IDC_HOST_RESULT), result);
            EXPECT_TRUE(::IsWindowEnabled(::GetDlgItem(dialog, IDOK)));
        });
    };
    Do(kCommandDownload, {tried({}, "", Say(Text::PortEmpty)), tried(damaged, "COM1", told(damaged)),
                          tried(unknown, "COM1", told(unknown)), [&](HWND dialog) {
                              ::SetDlgItemTextA(dialog, IDC_HOST_PORT, "COM1");
                              for (const std::string& file : {damaged, unknown}) {
                                  ::SetDlgItemTextA(dialog, IDC_HOST_DESCRIPTION, file.c_str());
                                  Press(dialog, IDOK);
                                  EXPECT_EQ(std::exchange(TellingHost::told, {}),
                                            std::vector<std::string>{Named(dialog, kDescriptionLabel, told(file))});
                                  EXPECT_TRUE(::IsChild(::GetDlgItem(dialog, IDC_HOST_DESCRIPTION), ::GetFocus()));
                              }
                              ::SetDlgItemTextA(dialog, IDC_HOST_PORT, "");
                              Press(dialog, IDOK);
                              EXPECT_EQ(std::exchange(TellingHost::told, {}),
                                        std::vector<std::string>{Named(dialog, kPortLabel, Say(Text::PortEmpty))});
                              Press(dialog, IDCANCEL);
                          }});
    EXPECT_FALSE(hands.window->IsDownloading());
}

TEST_F(Dialogs, KeysReachWhatAnEmptyWindowOffers) {
    Hands empty;
    ::SetFocus(empty.window->Chart().m_hWnd);
    empty.Key(VK_RETURN);  // nothing has been led to
    const Answers answers(empty.window->m_hWnd, {[](HWND dialog) {
                              EXPECT_NE(::GetDlgItem(dialog, IDC_HOST_PORT), nullptr);
                              Press(dialog, IDCANCEL);
                          }});
    for (const UINT key : {VK_TAB, VK_ESCAPE, VK_TAB, VK_TAB, VK_RETURN}) empty.Key(key);
}

TEST_F(Dialogs, ADownloadBeginsWithTheFieldsOfTheLastOne) {
    DownloadPlan plan;
    plan.port = "COM251";
    plan.count = 7;
    plan.interval = 2500;
    ASSERT_TRUE(hands.window->Connect("", plan));
    while (hands.window->IsDownloading()) {
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
        hands.Pump();
    }
    Do(kCommandDownload, {[&](HWND dialog) {
           EXPECT_EQ(FieldText(dialog, IDC_HOST_PORT), plan.port);
           EXPECT_EQ(FieldText(dialog, IDC_HOST_COUNT), "7");
           EXPECT_EQ(FieldText(dialog, IDC_HOST_INTERVAL), "2,5 s");
           Press(dialog, IDCANCEL);
       }});
}

// Waits in the queue until the work handles messages, and then presses Cancel in the dialog that stands over the window.
class Canceller : public CWnd {
public:
    explicit Canceller(HWND window) : m_window(window) {
        CreateEx(0, AfxRegisterWndClass(0), "canceller", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr);
        PostMessage(WM_APP);
    }
    int cancelled = 0;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_APP) {
            const HWND dialog = ::GetActiveWindow();
            EXPECT_EQ(::GetWindow(dialog, GW_OWNER), m_window);
            EXPECT_FALSE(::IsWindowEnabled(m_window));
            EXPECT_TRUE(::PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0));
            ++cancelled;
        }
        return CWnd::WindowProc(message, wParam, lParam);
    }

private:
    HWND m_window;
};

TEST_F(Dialogs, LargeWorkCanBeCancelledAndLeavesWhatWasThere) {
    const std::string large = Path("large.odb"), picture = Path("large.png");
    Hands::WriteSession(large, 120'000);
    const ViewState state = hands.State();
    const HWND window = hands.window->m_hWnd;
    const auto cancelled = [&](const std::function<bool()>& work) {
        Canceller canceller(window);
        EXPECT_FALSE(work());
        EXPECT_EQ(canceller.cancelled, 1);
        EXPECT_TRUE(::IsWindowEnabled(window));
        EXPECT_TRUE(hands.window->CanCommand(kCommandOpen));
        hands.Pump();
    };
    cancelled([&] { return hands.window->Open(large); });
    EXPECT_EQ(hands.window->Document().Path(), path);
    EXPECT_EQ(hands.State(), state);
    ASSERT_TRUE(hands.window->Open(large));
    EXPECT_EQ(hands.window->Document().GetSession()->Count(), 120'000u);
    hands.window->Command(kCommandZoomIn);
    for (const std::string& target : {large, path, Path("new.xml")}) {
        const bool existed = FileExists(target);
        const std::string bytes = BytesOf(target);
        cancelled([&] { return hands.window->SaveTo(target); });
        EXPECT_EQ(FileExists(target), existed) << target;
        EXPECT_TRUE(BytesOf(target) == bytes) << target;
        EXPECT_TRUE(hands.window->Document().IsModified());
    }
    std::ofstream(picture) << "an older picture";
    cancelled([&] { return hands.window->SavePicture(picture, {4000, 2500}); });
    EXPECT_EQ(BytesOf(picture), "an older picture");
    EXPECT_EQ(Count(), 3u) << "nothing is left beside the files";
    ASSERT_TRUE(hands.window->SaveTo(large));
    EXPECT_FALSE(hands.window->Document().IsModified());
    EXPECT_TRUE(TellingHost::told.empty());
}
}  // namespace
