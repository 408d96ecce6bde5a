// An axis of a chart with a range of values, a unit and a format for its labels. It draws itself and is shared by reference
// count: it counts from 0, and the last Release deletes it. User-interface thread, since labels and formats use the locale cache.
#pragma once

#include "afx/string.h"
#include "chart/axis.h"
#include "chart/axis_mapping.h"
#include "frame/ref_count.h"

class CPen;
class CPoint;

class ORVIK_API CUnitAxis : public CAxis, public virtual CRefCount {
public:
    explicit CUnitAxis(int horizontal);  // non-zero for a horizontal axis; the range is 0 to 100, the unit "?"
    // The reference count is copied with the rest, as it stands.
    CUnitAxis(const CUnitAxis& other);
    CUnitAxis& operator=(const CUnitAxis& other);
    ~CUnitAxis() override;

    void Zoom(LONG a, LONG b) override;
    // Divides the axis for labels in the DC's current font and draws it: line, ticks, labels, unit. The range is snapped to the
    // outermost ticks where they have the ends' own pixels; the format stays. The DC's text colour is the labels', its objects
    // and modes come back as they were. The area is filled first, unless the DC prints.
    void Render(CDC* pDC) override;
    void SaveRange() override;
    virtual void RestoreRange();  // the format stays as it is
    virtual BOOL IsRangeModified() const;
    // Narrows the range by a fraction of its span, or widens it with a negative factor, while the value under the point stays.
    // Factors of -1 and below do nothing. The point's y counts on a horizontal axis too, kept so.
    virtual void Zoom(CPoint point, double factor);

    DWORD AddRef() override;
    DWORD Release() override;

    // The values at the start and at the end of the axis (at the bottom and at the top of a vertical one); the saved pair.
    double GetOrigin() const { return m_origin; }
    double GetExtent() const { return m_extent; }
    double GetOldOrg() const { return m_savedOrigin; }
    double GetOldExt() const { return m_savedExtent; }
    // Clamps the ends to the single-precision range, widens a range that is too narrow to be told from a point, and derives the
    // format. An end that is not a number changes nothing. What is too narrow is measured by the end of larger magnitude with
    // its sign, so a negative one is believed down to FLT_MIN, and may leave both ends equal; kept so.
    void SetRange(double origin, double extent);
    // The range for data between these values, with 2 % of their span on either side.
    void AutoScale(double lowest, double highest);

    const CString& GetUnit() const { return m_unit; }
    void SetUnit(LPCSTR unit) { m_unit = unit; }
    // A picture for _NlsSetReal: "#######.##" with as many decimals as half the span needs, and one more; or "@@@" with as many
    // digits, for values from a million up and for ranges below a thousandth.
    CString GetFormat() const { return m_format; }

    BOOL IsVisible() const { return m_nRefCount > 1; }  // whether anyone but its owner holds the axis
    void SetValid(int valid) { m_valid = valid; }       // a flag for the axis's users
    BOOL IsValid() const { return m_valid; }
    // Labels of a vertical axis to the left of its line, right-aligned (at first), or to the right, left-aligned.
    void SetAlignRight() { m_side = -1; }
    void SetAlignLeft() { m_side = 1; }

    // Both always TRUE. See AxisMapping for clamping.
    BOOL Coord2Value(LONG coord, double& value) const;
    BOOL Value2Coord(double value, LONG& coord) const;

    // Lines across the rectangle at the large divisions of the last Render; lines on its edges are left out. Dotted, in the
    // colour of button faces (black when printing), or with the given pen.
    void DrawRaster(CDC* pDC, const RECT& rect);
    void DrawRaster(CDC* pDC, const RECT& rect, CPen& pen);

    orvik::AxisMapping GetMapping() const;

protected:
    int GetSide() const { return m_side; }  // -1 or 1
    // Without widening or a new format, as snapping does.
    void SetSnappedRange(double origin, double extent) { m_origin = origin, m_extent = extent; }

private:
    friend class CRubberTracker;  // gives back the format that a cancelled drag found

    void DeriveFormat();

    DWORD m_nRefCount = 0;
    BOOL m_valid = FALSE;
    LONG m_side = -1;
    double m_extent = 100.0;
    double m_origin = 0.0;
    double m_savedExtent = 100.0;
    double m_savedOrigin = 0.0;
    CString m_unit;
    CString m_format;
};

// A host's snapshot of an axis: its text and two values of its range. A value type; any thread.
class ORVIK_API CUnitAxisState {
public:
    CUnitAxisState();
    CUnitAxisState(const CUnitAxisState& other);
    CUnitAxisState& operator=(const CUnitAxisState& other);
    ~CUnitAxisState();

    CString m_text;
    double m_first = 0;
    double m_second = 0;
};
