#include "host/session/damage_gaps.h"

#include <algorithm>
#include <utility>

#include "host/words/texts.h"

std::optional<CRecordedGap> DamageGaps::Before(__int64 time) {
    const unsigned __int64 bytes = std::exchange(m_bytes, 0);
    const std::optional<__int64> before = std::exchange(m_last, time);
    // Damage of less than a reading cost a note, a comment or a part of the index.
    if (bytes < m_readingSize) return std::nullopt;
    CRecordedGap gap;
    gap.number = m_next++;
    gap.from = before ? *before + 1 : time - 1;
    gap.until = std::max(time - 1, gap.from);
    gap.missed = static_cast<DWORD>(std::min<unsigned __int64>(bytes / m_readingSize, 0xFFFFFFFF));
    gap.cause = GC_DAMAGED;
    gap.text = Say(Text::GapDamaged);
    return gap;
}
