// The line at the window's bottom: on the left what the pointer can do, beside it what has happened or the time that is pointed
// at, on the right how readings come, with a mark. The hint and the readings stay and what has happened is cut where there is
// no room; the time that is pointed at comes before the hint. House text. User-interface thread.
#pragma once

#include <string>

#include "afx/dc.h"

class StatusLine {
public:
    // How readings come; each has a colour and a shape of its own: a ring, a dot, a cross.
    enum class Mark { Waiting, Coming, Lost };

    std::string hint, told, pointed;
    std::string live;  // empty without readings that come: then there is no mark either
    Mark mark = Mark::Waiting;

    // Where its parts stand, and whether their texts are cut; texts are the line's own.
    struct Part {
        const std::string* text;
        CRect place;
        bool cut;
    };
    struct Parts {
        Part hint, told, live;
        CRect mark;
    };
    // `place` is the line, `window` says by which letters; pixels of the window.
    Parts Place(HWND window, const CRect& place) const;
    Parts Paint(CDC& dc, HWND window, const CRect& place) const;
    // The whole line, for those who hear it.
    std::string Said() const;

private:
    const std::string& Told() const { return pointed.empty() ? told : pointed; }
};
