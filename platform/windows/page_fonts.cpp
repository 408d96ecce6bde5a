// Fonts for pages: Uniscribe parts and shapes, at a size at which a pixel is a thousandth of an em.
#include "platform/page_fonts_internal.h"

#include <windows.h>

#include <usp10.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <mutex>

#include "platform/windows/truetype_subset_internal.h"

namespace orvik::detail {
namespace {
constexpr int kEm = 1000;

std::wstring Wide(const std::string& utf8) {
    const int length = static_cast<int>(utf8.size());
    std::wstring wide(utf8.size(), 0);
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, wide.data(), length)));
    return wide;
}
std::string Utf8(const std::wstring& wide) {
    const int length = static_cast<int>(wide.size());
    std::string utf8(wide.size() * 3, 0);
    utf8.resize(static_cast<size_t>(
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

std::string TableOf(HDC dc, const char* tag) {
    DWORD name = 0;
    std::memcpy(&name, tag, sizeof name);
    const DWORD size = GetFontData(dc, name, 0, nullptr, 0);
    if (size == GDI_ERROR) return "";
    std::string table(size, 0);
    return GetFontData(dc, name, 0, table.data(), size) == size ? table : "";
}

class MachineFont : public PageFont {
public:
    // Of the font that is selected.
    MachineFont(HDC dc, const std::wstring& family, std::string told) {
        for (const char* tag : {"glyf", "head", "hhea", "hmtx", "loca", "maxp", "cvt ", "fpgm", "prep", "CFF "})
            if (std::string table = TableOf(dc, tag); !table.empty()) m_tables.emplace(tag, std::move(table));
        name = Utf8(family);
        key = std::move(told);
        ascent = Unit(Table("hhea"), 4), descent = Unit(Table("hhea"), 6);
        const std::string& head = Table("head");
        left = Unit(head, 36), bottom = Unit(head, 38), right = Unit(head, 40), top = Unit(head, 42);
    }

    int Advance(uint32_t glyph) const override {
        const uint32_t measured = FontWord(Table("hhea"), 34);
        if (measured == 0) return kEm;
        return Unit(FontWord(Table("hmtx"), std::min(glyph, measured - 1) * size_t{4}));
    }

    std::string Subset(const std::vector<uint32_t>& glyphs, bool& isCff) const override {
        isCff = m_tables.contains("CFF ");
        return isCff ? m_tables.at("CFF ") : TrueTypeSubset(m_tables, glyphs);
    }

private:
    const std::string& Table(const char* tag) const {
        static const std::string kNone;
        const auto found = m_tables.find(tag);
        return found != m_tables.end() ? found->second : kNone;
    }
    int Unit(uint32_t value) const {
        const uint32_t units = std::max(FontWord(Table("head"), 18), 1u);
        return static_cast<int>(std::lround(value * double{kEm} / units));
    }
    int Unit(const std::string& table, size_t at) const {
        const uint32_t units = std::max(FontWord(Table("head"), 18), 1u);
        return static_cast<int>(std::lround(static_cast<int16_t>(FontWord(table, at)) * double{kEm} / units));
    }

    FontTables m_tables;
};

// The fonts that may say a text: the one that was asked for, then those that say much, then all others, opened as they are
// needed.
class Fonts {
public:
    Fonts(HDC dc, const VectorText& text) : m_dc(dc) {
        m_look.lfHeight = -kEm;
        m_look.lfWeight = text.weight;
        m_look.lfItalic = text.italic;
        m_look.lfCharSet = DEFAULT_CHARSET;
        m_look.lfOutPrecision = OUT_TT_PRECIS;
        m_look.lfPitchAndFamily = static_cast<BYTE>(text.pitch);
        m_families = {Wide(text.face), L"Segoe UI",      L"Arial",      L"DejaVu Sans",   L"Microsoft YaHei",
                      L"MS Gothic",    L"Malgun Gothic", L"Nirmala UI", L"Leelawadee UI", L"Segoe UI Symbol"};
    }
    ~Fonts() {
        SelectObject(m_dc, GetStockObject(SYSTEM_FONT));
        for (Opened& font : m_opened) {
            ScriptFreeCache(&font.cache);
            DeleteObject(font.font);
        }
    }
    Fonts(const Fonts&) = delete;
    Fonts& operator=(const Fonts&) = delete;

    // Selects the font; its cache and what the page knows of it.
    SCRIPT_CACHE* Select(size_t font) {
        SelectObject(m_dc, m_opened[font].font);
        return &m_opened[font].cache;
    }
    std::shared_ptr<const PageFont> Page(size_t font) {
        // Fonts are large, and a page has many texts: what one of them has read serves the others.
        static std::mutex lock;
        static std::map<std::string, std::weak_ptr<const PageFont>> known;
        const std::wstring& family = m_opened[font].family;
        const std::string key = Utf8(family) + '#' + std::to_string(m_look.lfWeight) + '#' + std::to_string(m_look.lfItalic);
        const std::lock_guard guard(lock);
        std::shared_ptr<const PageFont> page = known[key].lock();
        if (page == nullptr) {
            Select(font);
            page = std::make_shared<MachineFont>(m_dc, family, key);
            known[key] = page;
        }
        return page;
    }

    // The first font that has the character; the first one of all, whose box it shows, where none has.
    size_t For(wchar_t character) {
        for (size_t i = 0; i < m_opened.size() || Open(); ++i)
            if (Has(i, character)) return i;
        return 0;
    }
    bool Has(size_t font, wchar_t character) {
        constexpr WORD kMissing = 0xFFFF;
        WORD glyph = kMissing;
        Select(font);
        return GetGlyphIndicesW(m_dc, &character, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS) == 1 && glyph != kMissing;
    }
    bool Open() {
        for (; m_next < m_families.size() || ListAll(); ++m_next) {
            LOGFONTW look = m_look;
            const std::wstring& family = m_families[m_next];
            std::copy_n(family.begin(), std::min<size_t>(family.size(), LF_FACESIZE - 1), look.lfFaceName);
            Opened opened{CreateFontIndirectW(&look), nullptr, {}};
            if (opened.font == nullptr) continue;
            SelectObject(m_dc, opened.font);
            wchar_t face[LF_FACESIZE] = {};
            GetTextFaceW(m_dc, LF_FACESIZE, face);
            opened.family = face;
            // Outlines are what a page can carry; and what stands in for a family that is missing may be there already.
            const bool known = std::any_of(m_opened.begin(), m_opened.end(), [&](const Opened& o) { return o.family == face; });
            if (!known && !TableOf(m_dc, "head").empty() && !TableOf(m_dc, "hmtx").empty() && MayBeCarried()) {
                m_opened.push_back(std::move(opened));
                ++m_next;
                return true;
            }
            SelectObject(m_dc, GetStockObject(SYSTEM_FONT));
            DeleteObject(opened.font);
        }
        return false;
    }

private:
    struct Opened {
        HFONT font;
        SCRIPT_CACHE cache;
        std::wstring family;
    };

    // Whether the maker of the selected font lets it be put into documents.
    bool MayBeCarried() const {
        constexpr uint32_t kUse = 0xF, kRestricted = 2;
        return (FontWord(TableOf(m_dc, "OS/2"), 8) & kUse) != kRestricted;
    }

    static int CALLBACK AddFamily(const LOGFONTW* font, const TEXTMETRICW*, DWORD type, LPARAM families) {
        if ((type & TRUETYPE_FONTTYPE) != 0 && font->lfFaceName[0] != L'@')
            reinterpret_cast<std::vector<std::wstring>*>(families)->emplace_back(font->lfFaceName);
        return 1;
    }

    bool ListAll() {
        if (m_listed) return false;
        m_listed = true;
        LOGFONTW any{};
        any.lfCharSet = DEFAULT_CHARSET;
        EnumFontFamiliesExW(m_dc, &any, AddFamily, reinterpret_cast<LPARAM>(&m_families), 0);
        return m_next < m_families.size();
    }

    HDC m_dc;
    LOGFONTW m_look{};
    std::vector<std::wstring> m_families;
    std::vector<Opened> m_opened;
    size_t m_next = 0;
    bool m_listed = false;
};

// Characters of one script, direction and font.
struct Run {
    int begin, end;
    SCRIPT_ANALYSIS analysis;
    size_t font;
};

bool Sticks(wchar_t character) {  // to the one before it
    WORD kind = 0;
    GetStringTypeW(CT_CTYPE3, &character, 1, &kind);
    return (kind & (C3_NONSPACING | C3_DIACRITIC | C3_VOWELMARK)) != 0 || IS_LOW_SURROGATE(character) || character == 0x200D ||
           character == 0xFE0F;
}

std::vector<Run> RunsOf(const std::wstring& text, Fonts& fonts) {
    std::vector<SCRIPT_ITEM> items(text.size() + 2);
    const SCRIPT_CONTROL control{};
    const SCRIPT_STATE state{};
    int count = 0;
    std::vector<Run> runs;
    if (ScriptItemize(text.data(), static_cast<int>(text.size()), static_cast<int>(items.size()) - 1, &control, &state,
                      items.data(), &count) != S_OK)
        return runs;
    for (int item = 0; item < count; ++item) {
        const auto at = static_cast<size_t>(item);
        for (int i = items[at].iCharPos; i < items[at + 1].iCharPos; ++i) {
            const wchar_t c = text[static_cast<size_t>(i)];
            const bool fresh = i == items[at].iCharPos;
            const bool stays = !fresh && (Sticks(c) || c == L' ');
            const size_t font =
                stays || (!fresh && fonts.Has(runs.back().font, c) && runs.back().font == 0) ? runs.back().font : fonts.For(c);
            if (fresh || font != runs.back().font)
                runs.push_back({i, i + 1, items[at].a, font});
            else
                runs.back().end = i + 1;
        }
    }
    return runs;
}

void ShapeRun(HDC dc, const std::wstring& text, const Run& run, Fonts& fonts, PageLine& line) {
    const int length = run.end - run.begin;
    const wchar_t* const letters = text.data() + run.begin;
    SCRIPT_CACHE* const cache = fonts.Select(run.font);
    SCRIPT_ANALYSIS analysis = run.analysis;
    analysis.fLogicalOrder = FALSE;
    const size_t room = static_cast<size_t>(length) * 3 / 2 + 16;
    std::vector<WORD> glyphs(room), clusters(static_cast<size_t>(length));
    std::vector<SCRIPT_VISATTR> looks(room);
    int count = 0;
    const auto shape = [&] {
        return ScriptShape(dc, cache, letters, length, static_cast<int>(room), &analysis, glyphs.data(), clusters.data(),
                           looks.data(), &count);
    };
    if (shape() != S_OK) {
        analysis.eScript = SCRIPT_UNDEFINED;  // the font knows nothing of the script
        if (shape() != S_OK) return;
    }
    std::vector<int> advances(static_cast<size_t>(count));
    std::vector<GOFFSET> offsets(static_cast<size_t>(count));
    ABC whole{};
    if (ScriptPlace(dc, cache, glyphs.data(), count, looks.data(), &analysis, advances.data(), offsets.data(), &whole) != S_OK)
        return;
    // A character's cluster is named by the first of its glyphs, which is the last one of those read from the right.
    std::vector<std::wstring> says(static_cast<size_t>(count));
    for (int i = 0; i < length; ++i) {
        size_t glyph = clusters[static_cast<size_t>(i)];
        if (analysis.fRTL)
            while (glyph > 0 && std::find(clusters.begin(), clusters.end(), glyph - 1) == clusters.end()) --glyph;
        if (glyph < says.size()) says[glyph] += letters[i];
    }
    const std::shared_ptr<const PageFont> page = fonts.Page(run.font);
    for (size_t i = 0; i < says.size(); ++i) {
        line.glyphs.push_back(
            {page, glyphs[i], line.width + offsets[i].du, static_cast<double>(offsets[i].dv), Utf8(says[i]), nullptr});
        line.width += advances[i];
    }
}
}  // namespace

PageLine ShapeForPage(const VectorText& text) {
    PageLine line;
    const HDC dc = CreateCompatibleDC(nullptr);
    if (dc == nullptr) return line;
    {
        const std::wstring wide = Wide(text.text);
        Fonts fonts(dc, text);
        if (fonts.Open()) {
            const std::vector<Run> runs = RunsOf(wide, fonts);
            std::vector<BYTE> levels;
            for (const Run& run : runs) levels.push_back(static_cast<BYTE>(run.analysis.s.uBidiLevel));
            std::vector<int> order(runs.size());
            if (!runs.empty() && ScriptLayout(static_cast<int>(runs.size()), levels.data(), order.data(), nullptr) == S_OK)
                for (const int run : order) ShapeRun(dc, wide, runs[static_cast<size_t>(run)], fonts, line);
        }
    }
    DeleteDC(dc);
    return line;
}
}  // namespace orvik::detail
