// What stands in the chart's place while no session is open: how one can begin, in lines that a press follows.
// User-interface thread.
#pragma once

#include <vector>

#include "afx/dc.h"

class EmptyPage {
public:
    void Draw(CDC& dc, const CRect& client, UINT dpi);
    // The command whose line, as it was drawn last, a point lies on; 0 for none.
    UINT CommandAt(POINT point) const;

private:
    struct Link {
        UINT command;
        CRect place;
    };
    std::vector<Link> m_links;
};
