// Stretches or pans an axis's scale with the mouse, the axis following the pointer at once. Shift moves its origin end, Ctrl both
// ends, no key its extent end; the keys may change in the middle of the drag. User-interface thread.
// An end that stands on a tick holds on to it until the pointer is 4 pixels away; a drag stops where the next tick reaches the
// end.
#pragma once

#include "afx/dc.h"
#include "afx/gdi.h"
#include "chart/axis_hold.h"
#include "chart/tracker.h"

class ORVIK_API CRubberTracker : public CTracker {
public:
    // Sent to the window after each change and after a cancel, so that it scrolls its plot along and redraws: wParam is
    // MAKELONG(origin shift, extent shift), signed pixels, both 0 on cancel; lParam is the axis (CAxis*).
    static const UINT uMessage;

    // `rect` is where the axis is drawn, in client coordinates of the window; `font` is for its labels. Window and axis outlive
    // the tracker; an axis that is shown is held by it, and a window that is destroyed meanwhile is sent nothing.
    CRubberTracker(CWnd* pWnd, const RECT& rect, const LOGFONTA& font, CAxis* pAxis);
    CRubberTracker(const CRubberTracker&) = delete;
    CRubberTracker& operator=(const CRubberTracker&) = delete;
    ~CRubberTracker() override;

    // Saves the axis's range, which a cancel restores, with the labels' format.
    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;
    void OnEndTrack(CPoint point, BOOL moved, BOOL cancelled) override;
    // Takes the mode from the keys that are held: into the axis's rubber mode, and as the cursor.
    void SetMode() override;

private:
    BOOL IsVertical() const { return m_pAxis->GetOrientation() == CAxis::AX_VERTICAL; }
    void ShowAxis(CDC* pDC, LONG originShift, LONG extentShift);

    HWND m_hWnd;
    RECT m_rect;
    CAxis* m_pAxis;
    orvik::AxisHold m_hold;
    LONG m_anchor = 0;
    CString m_format;  // of the labels, at the start
    // The axis is drawn here first and copied whole, so that it does not flicker.
    CDC m_memoryDC;
    CBitmap m_bitmap;
    CFont m_font;
    CBitmap* m_pOldBitmap = nullptr;
    CFont* m_pOldFont = nullptr;
};
