// Drags an axis onto the place of another one of a chart, with which it changes places in the chart's array.
// User-interface thread.
#pragma once

#include "afx/ptr_array.h"
#include "chart/tracker.h"
#include "chart/unit_axis.h"

class ORVIK_API CDragAxisTracker : public CTracker {
public:
    // The caller's array outlives the tracker; axes in it are alive, null entries are passed over. An axis may be taken out of
    // the array and deleted while it is dragged: then nothing is exchanged.
    CDragAxisTracker(CTypedPtrArray<CPtrArray, CUnitAxis*>& axes, CUnitAxis* pAxis);

    // After tracking: the axis nearest to the pointer, which may be the dragged one itself; null when there was none, or when it
    // is no longer in the array.
    CUnitAxis* GetExchanged() const { return m_pExchanged; }

    // The band jumps from axis to axis: only axes that are shown count, the first of those at the same distance.
    void OnConstrainTrack(CPoint& point) override;
    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* pDC, UINT code, CPoint point) override;
    void OnEndTrack(CPoint point, BOOL moved, BOOL cancelled) override;

private:
    INT_PTR Find(const CUnitAxis* pAxis) const;  // -1 if it is not in the array

    CTypedPtrArray<CPtrArray, CUnitAxis*>* m_pAxes;
    CUnitAxis* m_pAxis;
    CUnitAxis* m_pExchanged = nullptr;
    RECT m_band;
    CAxis::AXORIENT m_orientation;
    LONG m_reach;  // to either side of the axis; kept, since the axis may go while it is dragged
};
