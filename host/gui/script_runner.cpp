#include "host/gui/script_runner.h"

#include <cmath>
#include <utility>

#include "afx/dc.h"
#include "host/chart/chart_file.h"
#include "host/gui/shown_pixels.h"
#include "platform/picture.h"
#include "platform/scripted_input.h"

namespace {
ScriptRunner* g_runner = nullptr;  // a timer without a window has no room for more
}  // namespace

ScriptRunner::ScriptRunner(MainWindow& window, const std::string& name, std::vector<ScriptStep> steps)
    : m_window(window), m_name(name), m_steps(std::move(steps)) {
    g_runner = this;
}

ScriptRunner::~ScriptRunner() {
    if (m_timer != 0) ::KillTimer(nullptr, m_timer);
    g_runner = nullptr;
}

void ScriptRunner::Fail(const ScriptStep& step, const std::string& sentence) const {
    throw Failure{kWrongUse, Say(Text::ScriptLine, {m_name, std::to_string(step.line), sentence})};
}

// Timers come last of all messages, when everything is handled and painted: so is each step.
void ScriptRunner::Run(const std::string& savePath) {
    m_savePath = savePath;
    m_timer = ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, OnTick);
    MSG message;
    while (!m_over && ::GetMessageA(&message, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageA(&message);
    }
    ::KillTimer(nullptr, std::exchange(m_timer, 0));
    if (!m_failures.empty()) throw m_failures.front();
}

void CALLBACK ScriptRunner::OnTick(HWND, UINT, UINT_PTR, DWORD) {
    if (g_runner != nullptr && !g_runner->m_over) g_runner->Tick();
}

// Exceptions do not pass through the system's own calls.
void ScriptRunner::Tick() {
    if (m_next == m_steps.size() || !m_failures.empty()) return Finish();
    const ScriptStep& step = m_steps[m_next++];
    try {
        Do(step);
    } catch (const Failure& failure) {
        m_failures.push_back(failure);
        if (failure.sentence.find(m_name) != 0) {
            m_failures.back().sentence = Say(Text::ScriptLine, {m_name, std::to_string(step.line), failure.sentence});
        }
    } catch (CException* exception) {
        char text[512] = "";
        exception->GetErrorMessage(text, sizeof text);
        exception->Delete();
        m_failures.push_back({kFileFailed, Say(Text::ScriptLine, {m_name, std::to_string(step.line), ToUtf8(text)})});
    }
}

void ScriptRunner::Finish() {
    if (m_left) {
        // A drag that was begun is cancelled, so that its loop ends.
        m_left = false;
        if (m_failures.empty()) {
            const ScriptStep& last = m_steps.back();
            m_failures.push_back({kWrongUse, Say(Text::ScriptLine, {m_name, std::to_string(last.line), Say(Text::ScriptHeld)})});
        }
        ::OrvikPostKey(m_window.m_hWnd, VK_ESCAPE, TRUE);
        ::OrvikPostKey(m_window.m_hWnd, VK_ESCAPE, FALSE);
        ::OrvikPostPointer(m_window.m_hWnd, WM_LBUTTONUP, 0, 0);
        return;
    }
    if (m_window.IsAsking()) {
        // A dialog that a key has opened is given up, so that its loop ends.
        if (m_failures.empty()) {
            const ScriptStep& last = m_steps.back();
            m_failures.push_back({kWrongUse, Say(Text::ScriptLine, {m_name, std::to_string(last.line), Say(Text::ScriptAsked)})});
        }
        if (::GetActiveWindow() != m_window.m_hWnd) ::PostMessageA(::GetActiveWindow(), WM_COMMAND, IDCANCEL, 0);
        return;
    }
    m_over = true;
    ::PostMessageA(m_window.m_hWnd, WM_NULL, 0, 0);
}

RECT ScriptRunner::PlaceOf(const ScriptStep& step) const {
    const std::string& place = step.point.place;
    const ViewParts& parts = m_window.Chart().Parts();
    RECT rect = {};
    const auto number = [&](size_t letters) { return static_cast<size_t>(std::stoul(place.substr(letters))) - 1; };
    const auto begins = [&](std::string_view word) { return place.compare(0, word.size(), word) == 0; };
    const auto within = [&](HWND pane, const RECT& there) {
        RECT here = there;
        ::MapWindowPoints(pane, m_window.m_hWnd, reinterpret_cast<POINT*>(&here), 2);
        return here;
    };
    const HWND chart = m_window.Chart().m_hWnd, list = m_window.List().m_hWnd;
    if (place == "window") {
        ::GetClientRect(m_window.m_hWnd, &rect);
    } else if (place == "bar") {
        rect = m_window.BarRect();
    } else if (place == "list") {
        ::GetClientRect(list, &rect);
        rect = within(list, rect);
    } else if (begins("column")) {
        if (number(6) < ValueList::kColumns) rect = within(list, m_window.List().ColumnRect(number(6)));
    } else if (place == "plot") {
        rect = within(chart, parts.plot);
    } else if (place == "time" || place == "timerubber") {
        rect = within(chart, place == "time" ? parts.time.zoom : parts.time.rubber);
    } else if (place == "selection") {
        if (parts.selected) rect = within(chart, parts.selection.GetPosition());
    } else if (begins("tag")) {
        if (number(3) < parts.tags.size()) rect = within(chart, parts.tags[number(3)]);
    } else {
        const size_t at = number(begins("rubber") ? 6 : 4);
        if (at < parts.axes.size()) {
            const ViewParts::Axis& axis = parts.axes[at];
            rect = within(chart, begins("rubber") ? axis.rubber : begins("drag") ? axis.drag : axis.zoom);
        }
    }
    if (::IsRectEmpty(&rect)) Fail(step, Say(Text::ScriptNotShown, {place}));
    return rect;
}

POINT ScriptRunner::PixelOf(const ScriptStep& step) const {
    const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    if (step.point.place.empty()) return {whole(step.point.x), whole(step.point.y)};
    const RECT rect = PlaceOf(step);
    return {rect.left + whole((rect.right - 1 - rect.left) * step.point.x / 100),
            rect.top + whole((rect.bottom - 1 - rect.top) * step.point.y / 100)};
}

void ScriptRunner::Hold(const ScriptStep& step, BOOL down) {
    const auto hold = [&](bool wanted, bool& held, UINT key) {
        if (wanted == held) return;
        ::OrvikPostKey(m_window.m_hWnd, key, wanted);
        held = wanted;
    };
    hold(down && step.shift, m_heldShift, VK_SHIFT);
    hold(down && step.control, m_heldControl, VK_CONTROL);
}

void ScriptRunner::Post(UINT message, const ScriptStep& step, int wheel) {
    const POINT point = PixelOf(step);
    ::OrvikPostPointer(m_window.m_hWnd, message, point.x, point.y, wheel);
}

void ScriptRunner::Do(const ScriptStep& step) {
    switch (step.kind) {
        case ScriptStep::Size:
            m_window.SetClientSize({step.number, step.second});
            return;
        case ScriptStep::Press:
            if (m_left && !step.right) Fail(step, Say(Text::ScriptHeld));
            Hold(step, TRUE);
            Post(WM_MOUSEMOVE, step);
            Post(step.right ? WM_RBUTTONDOWN : WM_LBUTTONDOWN, step);
            if (step.twice) {
                Post(WM_LBUTTONUP, step);
                Post(WM_LBUTTONDBLCLK, step);
            }
            m_left |= !step.right;
            return;
        case ScriptStep::Move:
            Post(WM_MOUSEMOVE, step);
            return;
        case ScriptStep::Release:
            if (!m_left && !step.right) Fail(step, Say(Text::ScriptNotHeld));
            Post(step.right ? WM_RBUTTONUP : WM_LBUTTONUP, step);
            if (!step.right) m_left = false;
            Hold(step, FALSE);
            return;
        case ScriptStep::Wheel:
            Hold(step, TRUE);
            Post(WM_MOUSEMOVE, step);
            Post(WM_MOUSEWHEEL, step, step.number * WHEEL_DELTA);
            Hold(step, FALSE);
            return;
        case ScriptStep::Key:
            Hold(step, TRUE);
            ::OrvikPostKey(m_window.m_hWnd, step.key, TRUE);
            ::OrvikPostKey(m_window.m_hWnd, step.key, FALSE);
            Hold(step, FALSE);
            return;
        case ScriptStep::Type:
            ::OrvikPostText(::GetFocus() != nullptr ? ::GetFocus() : m_window.m_hWnd, step.text.c_str());
            return;
        case ScriptStep::Menu: {
            const CommandId command = CommandNamed(step.text);
            if (command == kCommandNone || AsksUser(command)) Fail(step, Say(Text::ScriptNoMenu, {ToUtf8(step.text)}));
            if (!m_window.Command(command)) Fail(step, Say(Text::ScriptNotNow, {ToUtf8(step.text)}));
            return;
        }
        case ScriptStep::Picture: {
            PaintAll(m_window);
            RECT client = {};
            ::GetClientRect(m_window.m_hWnd, &client);
            RequirePictureName(step.text);
            CClientDC dc(&m_window);
            if (!::OrvikSavePixels(dc, &client, step.text.c_str()))
                throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(step.text), Reason(GetLastError())})};
            return;
        }
        case ScriptStep::Save:
            m_window.SaveTo(step.text.empty() ? m_savePath : step.text);
            return;
        case ScriptStep::Remember:
            m_remembered = ShownPixels(m_window);
            return;
        case ScriptStep::Expect:
            if (m_remembered.empty()) Fail(step, Say(Text::ScriptNothingKept));
            if ((ShownPixels(m_window) == m_remembered) != (step.text == "same"))
                Fail(step, Say(step.text == "same" ? Text::ScriptNotSame : Text::ScriptNotOther));
            return;
    }
}
