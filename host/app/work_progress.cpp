#include "host/app/work_progress.h"

#include <algorithm>

#include "host/words/texts.h"

namespace {
constexpr DWORD kPatience = 300;  // ms
}

LineProgress::LineProgress(std::string text) : m_text(std::move(text)) {
    m_bar.Start(100, nullptr, m_text.c_str(), nullptr, TRUE, nullptr, TRUE);
}

bool LineProgress::At(unsigned __int64 done, unsigned __int64 total) {
    const LONG percent =
        total == 0 ? 0 : static_cast<LONG>(static_cast<double>(std::min(done, total)) * 100 / static_cast<double>(total));
    if (percent == m_percent) return true;
    m_percent = percent;
    m_bar.Feed(percent, nullptr, nullptr, TRUE);
    if (GetTickCount() - m_begun >= kPatience) m_line.Show(Say(Text::WorkPercent, {m_text, std::to_string(percent)}));
    return !m_bar.IsAborted();
}
