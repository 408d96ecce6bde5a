// Does a script's steps in a window, one after the other, while the window's own messages go on: a step is done when everything
// before it has been handled and drawn, also in the middle of a drag. User-interface thread.
#pragma once

#include <functional>
#include <vector>

#include "host/gui/main_window.h"
#include "host/gui/script.h"

class ScriptRunner {
public:
    ScriptRunner(MainWindow& window, const std::string& name, std::vector<ScriptStep> steps);
    ~ScriptRunner();
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;

    // Returns when all is done; a Failure names the line that could not be done. Paths of saves that name none.
    void Run(const std::string& savePath);

private:
    static void CALLBACK OnTick(HWND, UINT, UINT_PTR, DWORD);
    void Tick();
    void Do(const ScriptStep& step);
    void Finish();
    POINT PixelOf(const ScriptStep& step) const;
    RECT PlaceOf(const ScriptStep& step) const;
    void Post(UINT message, const ScriptStep& step, int wheel = 0);
    void Hold(const ScriptStep& step, BOOL down);
    [[noreturn]] void Fail(const ScriptStep& step, const std::string& sentence) const;

    MainWindow& m_window;
    std::string m_name, m_savePath;
    std::vector<ScriptStep> m_steps;
    size_t m_next = 0;
    UINT_PTR m_timer = 0;
    bool m_left = false;  // the left button is down
    bool m_heldShift = false, m_heldControl = false;
    bool m_over = false;
    std::vector<COLORREF> m_remembered;
    std::vector<Failure> m_failures;  // the first one counts
};
