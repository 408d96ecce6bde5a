// The progress bar: a position in a range, and a step.
#include <algorithm>

#include "platform/posix/controls/control_internal.h"
#include "platform/posix/controls/flat_looks_internal.h"

namespace orvik::detail {
namespace {
class Progress final : public Control {
public:
    using Control::Control;

    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override {
        switch (message) {
            case PBM_SETRANGE:
                return SetRange(static_cast<short>(LOWORD(lParam)), static_cast<short>(HIWORD(lParam)));
            case PBM_SETRANGE32:
                return SetRange(static_cast<int>(wParam), static_cast<int>(lParam));
            case PBM_SETPOS:
                return Move(static_cast<int>(wParam));
            case PBM_DELTAPOS:
                return Move(static_cast<long long>(m_position) + static_cast<int>(wParam));
            case PBM_SETSTEP:
                return std::exchange(m_step, static_cast<int>(wParam));
            case PBM_GETSTEP:
                return m_step;
            case PBM_STEPIT:
                return Step();
            case PBM_GETRANGE:
                if (auto* range = reinterpret_cast<PBRANGE*>(lParam)) *range = {m_low, m_high};
                return wParam != 0 ? m_low : m_high;
            case PBM_GETPOS:
                return m_position;
            case PBM_SETBARCOLOR:
                return Recolour(m_bar, wParam, lParam);
            case PBM_SETBKCOLOR:
                return Recolour(m_back, wParam, lParam);
            case PBM_GETBARCOLOR:
                return static_cast<LRESULT>(m_bar);
            case PBM_GETBKCOLOR:
                return static_cast<LRESULT>(m_back);
            default:
                return Control::Handle(message, wParam, lParam);
        }
    }

protected:
    void Paint(HDC dc, const RECT& client) override {
        const float radius = static_cast<float>(Scaled(3));
        FillRect(dc, &client, ParentBrush(dc, WM_CTLCOLORSTATIC));
        FillRounded(dc, client, radius, m_back == CLR_DEFAULT ? GetSysColor(COLOR_BTNSHADOW) : m_back);
        RECT inner = client;
        const long long span = static_cast<long long>(m_high) - m_low;
        if (span <= 0) return;
        const long long done = static_cast<long long>(m_position) - m_low;
        if (Style() & PBS_VERTICAL)
            inner.top = inner.bottom - static_cast<LONG>((inner.bottom - inner.top) * done / span);
        else
            inner.right = inner.left + static_cast<LONG>((inner.right - inner.left) * done / span);
        if (inner.left < inner.right && inner.top < inner.bottom)
            FillRounded(dc, inner, radius, m_bar == CLR_DEFAULT ? GetSysColor(COLOR_HIGHLIGHT) : m_bar);
    }

    void Describe(OrvikAccessible& out) const override {
        out.role = OrvikRole::Progress;
        out.least = m_low;
        out.most = m_high;
        out.now = m_position;
    }

private:
    LRESULT SetRange(int low, int high) {
        const LRESULT before = static_cast<LRESULT>(static_cast<DWORD>(MAKELONG(m_low, m_high)));
        m_low = low;
        m_high = high;
        Move(m_position);
        Invalidate();
        return before;
    }
    // Gives the position before.
    LRESULT Move(long long position) {
        const int before = m_position;
        m_position = static_cast<int>(std::max<long long>(m_low, std::min<long long>(position, m_high)));
        if (m_position != before) Invalidate();
        return before;
    }
    // Beyond an end the position starts over from the other one.
    LRESULT Step() {
        long long next = static_cast<long long>(m_position) + m_step;
        const long long span = static_cast<long long>(m_high) - m_low;
        if (span > 0 && next > m_high) next = m_low + (next - m_low) % span;
        if (span > 0 && next < m_low) next = m_high + (next - m_low) % span;
        return Move(next);
    }
    LRESULT Recolour(COLORREF& colour, WPARAM wParam, LPARAM lParam) {
        static_cast<void>(wParam);
        Invalidate();
        return static_cast<LRESULT>(std::exchange(colour, static_cast<COLORREF>(lParam)));
    }

    int m_low = 0, m_high = 100, m_step = 10, m_position = 0;
    COLORREF m_bar = CLR_DEFAULT, m_back = CLR_DEFAULT;
};
}  // namespace

LRESULT CALLBACK ProgressProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return ControlProcedure<Progress>(window, message, wParam, lParam);
}
}  // namespace orvik::detail
