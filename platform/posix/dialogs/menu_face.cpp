// Where a menu's items stand, and which of them a letter stands for.
#include <algorithm>

#include "platform/letters.h"
#include "platform/posix/dialogs/menu_face_internal.h"
#include "platform/posix/drawing/text_draw.h"
#include "platform/posix/text/text.h"

namespace orvik::detail {
namespace {
class ScreenDc {
public:
    ScreenDc() : m_dc(GetDC(nullptr)), m_state(SaveDC(m_dc)) {}
    ~ScreenDc() {
        RestoreDC(m_dc, m_state);
        ReleaseDC(nullptr, m_dc);
    }
    ScreenDc(const ScreenDc&) = delete;
    ScreenDc& operator=(const ScreenDc&) = delete;
    operator HDC() const { return m_dc; }

private:
    HDC m_dc;
    int m_state;
};

SIZE Extent(HDC dc, const std::string& text) {
    RECT box{};
    if (!text.empty()) DrawTextA(dc, text.c_str(), static_cast<int>(text.size()), &box, DT_CALCRECT | DT_SINGLELINE);
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    return {box.right - box.left, metrics.tmHeight};
}

// The letter behind the last single '&' of a label; empty for none.
std::string MnemonicOf(const std::string& label) {
    std::string found;
    for (size_t at = label.find('&'); at != std::string::npos && at + 1 < label.size(); at = label.find('&', at + 2)) {
        if (label[at + 1] != '&') found = label.substr(at + 1, OrvikNextLetter(label, at + 1) - at - 1);
    }
    return found;
}
}  // namespace

std::pair<std::string, std::string> LabelAndKeys(const MenuItem& item) {
    const size_t tab = item.text.find('\t');
    if (tab == std::string::npos) return {item.text, ""};
    return {item.text.substr(0, tab), item.text.substr(tab + 1)};
}

SIZE MenuFace::Measure(HDC dc, const MenuItem& item, LONG& keys) const {
    keys = 0;
    if (item.Is(MF_OWNERDRAW)) {
        MEASUREITEMSTRUCT asked{ODT_MENU, 0, static_cast<UINT>(item.id), 0, 0, item.data};
        SendMessageA(m_owner, WM_MEASUREITEM, 0, reinterpret_cast<LPARAM>(&asked));
        constexpr UINT kMost = 32767;
        return {static_cast<LONG>(std::min(asked.itemWidth, kMost)), static_cast<LONG>(std::min(asked.itemHeight, kMost))};
    }
    SelectObject(dc, (item.state & MF_DEFAULT) != 0 ? m_looks.bold : m_looks.font);
    const auto [label, keyName] = LabelAndKeys(item);
    if (!keyName.empty()) keys = Extent(dc, keyName).cx + m_looks.keyGap;
    SIZE size = Extent(dc, label);
    size.cy += 2 * m_looks.rowGap;
    return size;
}

void MenuFace::ArrangePopup() {
    const ScreenDc dc;
    m_cells.resize(m_items.size());
    LONG left = m_looks.edge, top = m_looks.edge, texts = 0, keys = 0, bottom = top;
    int column = 0;
    size_t first = 0;
    const auto endColumn = [&](size_t end) {
        const LONG right = left + m_looks.mark + texts + keys + m_looks.arrow;
        for (size_t i = first; i < end; ++i) m_cells[i].place.left = left, m_cells[i].place.right = right;
        left = right;
        first = end;
        texts = keys = 0;
    };
    for (size_t i = 0; i < m_items.size(); ++i) {
        const MenuItem& item = m_items[i];
        if (item.Is(MF_MENUBREAK | MF_MENUBARBREAK) && i > first) {
            endColumn(i);
            if (item.Is(MF_MENUBARBREAK)) left += m_looks.separator;
            top = m_looks.edge;
            ++column;
        }
        LONG keyWidth = 0, height = m_looks.separator;
        if (!item.Is(MF_SEPARATOR)) {
            const SIZE size = Measure(dc, item, keyWidth);
            texts = std::max(texts, size.cx);
            keys = std::max(keys, keyWidth);
            height = size.cy;
        }
        m_cells[i] = {{0, top, 0, top + height}, column};
        top += height;
        bottom = std::max(bottom, top);
    }
    endColumn(m_items.size());
    m_size = {left + m_looks.edge, bottom + m_looks.edge};
}

void MenuFace::ArrangeBar(LONG width) {
    const ScreenDc dc;
    m_cells.resize(m_items.size());
    LONG left = 0, top = 0;
    for (size_t i = 0; i < m_items.size(); ++i) {
        LONG keys = 0;
        const LONG wide = Measure(dc, m_items[i], keys).cx + keys + 2 * m_looks.barGap;
        const bool wraps = left + wide > width || m_items[i].Is(MF_MENUBREAK | MF_MENUBARBREAK);
        if (wraps && left > 0) left = 0, top += m_looks.barRow;
        m_cells[i].place = {left, top, left + wide, top + m_looks.barRow};
        left += wide;
    }
    m_size = {width, m_items.empty() ? 0 : top + m_looks.barRow + m_looks.line};
}

int MenuFace::ItemAt(POINT point) const {
    for (int i = 0; i < Count(); ++i) {
        const RECT place = PlaceOf(i);
        if (point.x >= place.left && point.x < place.right && point.y >= place.top && point.y < place.bottom) return i;
    }
    return -1;
}

int MenuFace::Step(int from, int by) const {
    int at = from < 0 && by < 0 ? Count() : from;
    for (int tries = 0; tries < Count(); ++tries) {
        at = (at + by + Count()) % Count();
        if (!(*this)[at].Is(MF_SEPARATOR)) return at;
    }
    return -1;
}

int MenuFace::Beside(int item, int by) const {
    if (item < 0 || m_bar) return -1;
    const Cell& from = m_cells[static_cast<size_t>(item)];
    int nearest = -1;
    for (int i = 0; i < Count(); ++i) {
        const Cell& to = m_cells[static_cast<size_t>(i)];
        const auto off = [&](const Cell& cell) { return std::abs(cell.place.top - from.place.top); };
        if (to.column != from.column + by || (*this)[i].Is(MF_SEPARATOR)) continue;
        if (nearest < 0 || off(to) < off(m_cells[static_cast<size_t>(nearest)])) nearest = i;
    }
    return nearest;
}

std::vector<int> MenuFace::ItemsFor(const std::string& letter) const {
    std::vector<int> byMnemonic, byFirst;
    for (int i = 0; i < Count(); ++i) {
        if ((*this)[i].Is(MF_SEPARATOR | MF_OWNERDRAW)) continue;
        const std::string label = LabelAndKeys((*this)[i]).first, mnemonic = MnemonicOf(label);
        const std::string first = label.substr(0, OrvikNextLetter(label, 0));
        if (!mnemonic.empty() && lstrcmpiA(mnemonic.c_str(), letter.c_str()) == 0) byMnemonic.push_back(i);
        if (mnemonic.empty() && lstrcmpiA(first.c_str(), letter.c_str()) == 0) byFirst.push_back(i);
    }
    return byMnemonic.empty() ? byFirst : byMnemonic;
}
}  // namespace orvik::detail
