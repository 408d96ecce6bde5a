// What Edit > Copy takes: the chart with the readings that it shows, or the row of the list that has the keys.
#include <algorithm>

#include "afx/dc.h"
#include "host/gui/clipboard_writer.h"
#include "host/gui/main_window.h"
#include "host/session/reading_source.h"
#include "host/session/reading_writer.h"
#include "host/words/console.h"

namespace {
// Beyond it spreadsheets and mail programs take very long over a page, and nobody reads it.
constexpr size_t kMostCells = 200'000;

// The chart's pixels, from the top.
class ChartPixels {
public:
    explicit ChartPixels(SIZE size) : m_dc(::CreateCompatibleDC(nullptr)) {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = size.cx;
        info.bmiHeader.biHeight = -size.cy;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        m_bitmap = ::CreateDIBSection(m_dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        if (m_bitmap == nullptr) throw Failure{kFileFailed, Reason(ERROR_NOT_ENOUGH_MEMORY)};
        m_bits = static_cast<const DWORD*>(bits);
        m_before = ::SelectObject(m_dc, m_bitmap);
    }
    ~ChartPixels() {
        if (m_before != nullptr) ::SelectObject(m_dc, m_before);
        if (m_bitmap != nullptr) ::DeleteObject(m_bitmap);
        ::DeleteDC(m_dc);
    }
    ChartPixels(const ChartPixels&) = delete;
    ChartPixels& operator=(const ChartPixels&) = delete;
    HDC Dc() const { return m_dc; }
    const DWORD* Bits() const {
        ::GdiFlush();
        return m_bits;
    }

private:
    HDC m_dc;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_before = nullptr;
    const DWORD* m_bits = nullptr;
};
}  // namespace

TimeRange MainWindow::TimesShown() {
    if (!m_document.State().time) return {};
    m_chart.Prepare();
    const ViewRange shown = m_chart.ShownTimes();
    return {m_chart.TimeAxis().TimeOf(std::min(shown.origin, shown.extent)),
            m_chart.TimeAxis().TimeOf(std::max(shown.origin, shown.extent))};
}

void MainWindow::CopyShown() {
    if (::GetFocus() == m_list.m_hWnd && m_list.Channel())
        CopyRow(*m_list.Channel());
    else
        CopyChart();
}

void MainWindow::CopyRow(size_t channel) {
    const std::vector<std::string> cells = m_list.RowTexts(channel);
    std::string row;
    for (const std::string& cell : cells) row += (row.empty() ? "" : "\t") + ToUtf8(cell);
    ClipboardWriter(m_hWnd).PutText(row + "\n");
    ShowStatus(Say(Text::CopiedRow, {ToUtf8(cells.front())}));
}

void MainWindow::CopyChart() {
    FollowReadings();
    const Session& session = *m_document.GetSession();
    const std::vector<std::string>& hidden = m_document.State().hidden;
    ShownChannels shown;
    for (size_t i = 0; i < session.Channels().size(); ++i) {
        if (std::find(hidden.begin(), hidden.end(), session.Channels()[i].key) == hidden.end()) shown.push_back(i);
    }
    std::string text, html;
    const auto table = MakeCsvWriter(session, shown, CsvForm{'\t', true, false});
    const auto page = MakeHtmlWriter(session, shown);
    table->Heading(text);
    page->Heading(html);
    size_t rows = 0;
    bool whole = true;
    const std::unique_ptr<ReadingSource> readings = ReadingsOf(session, TimesShown());
    while (whole && readings->Next()) {
        whole = ++rows * (shown.size() + 1) <= kMostCells;
        table->Row(text, readings->Time(), readings->Values());
        page->Row(html, readings->Time(), readings->Values());
    }
    page->End(html);

    const SIZE size = ChartSize();
    ChartPixels pixels(size);
    CDC dc;
    dc.Attach(pixels.Dc());
    m_chart.DrawOn(dc, CRect(0, 0, size.cx, size.cy));
    dc.Detach();

    ClipboardWriter clipboard(m_hWnd);
    clipboard.PutPicture(pixels.Bits(), size);
    if (whole) {
        clipboard.PutText(text);
        clipboard.PutHtml(html);
    }
    ShowStatus(whole ? Say(Text::CopiedChart, {std::to_string(rows)}) : Say(Text::CopiedPicture, {std::to_string(kMostCells)}));
}
