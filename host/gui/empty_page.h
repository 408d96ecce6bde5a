// What stands in the chart's place while no session is open: how one can begin, in lines that a press follows, or Enter where
// Tab has led.
// User-interface thread.
#pragma once

#include <optional>
#include <vector>

#include "afx/dc.h"

class EmptyPage {
public:
    void Draw(CDC& dc, const CRect& client, UINT dpi);
    void Step(bool back);  // to the next line, round about; from none to the first or the last one
    void Leave() { m_focus.reset(); }
    UINT Focused() const { return m_focus ? m_links[*m_focus].command : 0; }
    // The command whose line, as it was drawn last, a point lies on; 0 for none.
    UINT CommandAt(POINT point) const;

private:
    struct Link {
        UINT command;
        CRect place;
    };
    std::vector<Link> m_links;
    std::optional<size_t> m_focus;
};
