#include "host/gui/tag_tracker.h"

#include <algorithm>

#include "afx/dc.h"

TagTracker::TagTracker(const RECT& plot, const RECT& tag, int line) : m_tag(tag), m_line(line) {
    SetConstrainRect({plot.left, plot.top, std::max(plot.left, plot.right - 1 - (tag.right - tag.left)),
                      std::max(plot.top, plot.bottom - 1 - (tag.bottom - tag.top))});
    SetClipRect(plot);
    SetTrackFlags(TRACK_HORIZONTAL | TRACK_VERTICAL);
}

void TagTracker::OnBeginTrack(CPoint point) { SetDelta(m_tag.left - point.x, m_tag.top - point.y); }

void TagTracker::OnTrack(CDC* dc, UINT code, CPoint point) {
    if (code == TRACK_REPEAT) return;
    const CRect frame(point, CSize(m_tag.right - m_tag.left, m_tag.bottom - m_tag.top));
    // By inverting, so that a second call takes it away.
    dc->InvertRect(CRect(frame.left, frame.top, frame.right, frame.top + m_line));
    dc->InvertRect(CRect(frame.left, frame.bottom - m_line, frame.right, frame.bottom));
    dc->InvertRect(CRect(frame.left, frame.top + m_line, frame.left + m_line, frame.bottom - m_line));
    dc->InvertRect(CRect(frame.right - m_line, frame.top + m_line, frame.right, frame.bottom - m_line));
}
