// Moves a tag about the plot: its frame follows the pointer. User-interface thread.
#pragma once

#include "chart/tracker.h"

class TagTracker : public CTracker {
public:
    // The tag stays within the plot as far as it fits; `line` is how thick its frame is.
    TagTracker(const RECT& plot, const RECT& tag, int line);

    CPoint Corner() const { return m_point; }  // the upper left one, after tracking

    void OnBeginTrack(CPoint point) override;
    void OnTrack(CDC* dc, UINT code, CPoint point) override;

private:
    RECT m_tag;
    int m_line;
};
