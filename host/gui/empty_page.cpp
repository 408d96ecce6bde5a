#include "host/gui/empty_page.h"

#include <algorithm>
#include <string>

#include "host/chart/chart_colours.h"
#include "host/chart/chart_layout.h"
#include "host/gui/menu_commands.h"
#include "host/gui/pane_font.h"
#include "host/words/texts.h"
#include "platform/dpi.h"

namespace {
constexpr LONG kRing = 4;  // pixels at 96 dots an inch
}  // namespace

void EmptyPage::Draw(CDC& dc, const CRect& client, UINT dpi) {
    const ChartColours colours = ChartColours::OfWindow();
    dc.FillSolidRect(client, colours.paper);
    CFont font;
    const LOGFONTA description = PaneFont(ChartFontHeight(client.Width(), client.Height(), dpi));
    font.CreateFontIndirect(&description);
    CFont* const before = dc.SelectObject(&font);
    m_links.clear();
    for (const MenuCommand& one : kMenuCommands) {
        if (one.id == kCommandOpen || one.id == kCommandDownload) m_links.push_back({one.id, {}});
    }
    const LONG height = dc.GetTextExtent("0", 1).cy * 3 / 2;
    CRect line = client;
    line.top = (client.top + client.bottom - height * static_cast<LONG>(m_links.size() + 1)) / 2;
    line.bottom = line.top + height;
    const auto write = [&](const std::string& text, COLORREF colour) {
        dc.SetTextColor(colour);
        dc.DrawText(text.c_str(), static_cast<int>(text.size()), line, DT_SINGLELINE | DT_CENTER | DT_VCENTER);
        const LONG width = dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx, middle = line.CenterPoint().x;
        const CRect place(middle - width / 2, line.top, middle + (width + 1) / 2, line.bottom);
        line.OffsetRect(0, height);
        return place;
    };
    write(Say(Text::NothingOpen), colours.quiet);
    for (Link& link : m_links) {
        const MenuCommand& command = *std::find_if(std::begin(kMenuCommands), std::end(kMenuCommands),
                                                   [&](const MenuCommand& one) { return one.id == link.command; });
        std::string text = Say(command.text);
        std::erase(text, '&');
        link.place = write(text + "  " + command.keyText, ::GetSysColor(COLOR_HOTLIGHT));
    }
    dc.SelectObject(before);
    if (!m_focus) return;
    CRect ring = m_links[*m_focus].place;
    ring.InflateRect(OrvikScale(kRing, dpi), 0);
    dc.DrawFocusRect(ring);
}

void EmptyPage::Step(bool back) {
    const size_t count = m_links.size();
    if (count == 0) return;
    m_focus = !m_focus ? (back ? count - 1 : 0) : (*m_focus + (back ? count - 1 : 1)) % count;
}

UINT EmptyPage::CommandAt(POINT point) const {
    for (const Link& link : m_links) {
        if (link.place.PtInRect(point)) return link.command;
    }
    return 0;
}
