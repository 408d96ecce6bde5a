#include "platform/rich_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "platform/posix/text/text_internal.h"

namespace orvik {
namespace {

// Groups that keep a setting of their own. Deeper ones share the innermost of these; their text is read all the same.
constexpr size_t kMostGroups = 256;

// Control words whose group holds no text of the document, with a space on either side.
constexpr std::string_view kDestinations =
    " fonttbl colortbl stylesheet info pict object nonshppict do header headerl headerr headerf footer footerl footerr footerf "
    "footnote ftnsep ftnsepc ftncn aftnsep aftnsepc aftncn annotation atrfstart comment xe rxe tc tcn bkmkstart bkmkend fldinst "
    "pntext pntxta pntxtb filetbl listtable listoverridetable revtbl rsidtbl latentstyles themedata colorschememapping datastore "
    "template generator private1 ";

bool IsDestination(std::string_view word) {
    for (size_t at = kDestinations.find(word); at != kDestinations.npos; at = kDestinations.find(word, at + 1))
        if (kDestinations[at - 1] == ' ' && kDestinations[at + word.size()] == ' ') return true;
    return false;
}

// Control words that stand for text. Code points of Windows-1252.
constexpr std::pair<std::string_view, std::string_view> kTexts[] = {
    {"par", "\n"},         {"line", "\v"},     {"sect", "\n"},     {"page", "\n"},     {"row", "\n"},      {"tab", "\t"},
    {"cell", "\t"},        {"emdash", "\x97"}, {"endash", "\x96"}, {"lquote", "\x91"}, {"rquote", "\x92"}, {"ldblquote", "\x93"},
    {"rdblquote", "\x94"}, {"bullet", "\x95"}, {"emspace", " "},   {"enspace", " "},   {"qmspace", " "}};

bool IsLetter(char ch) { return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z'); }
bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }
int HexDigit(char ch) {
    if (IsDigit(ch)) return ch - '0';
    if (ch >= 'a' && ch <= 'f') return ch - 'a' + 10;
    if (ch >= 'A' && ch <= 'F') return ch - 'A' + 10;
    return -1;
}

class Reader {
public:
    explicit Reader(std::string_view text) : m_text(text) {}

    std::string Read() {
        while (m_at < m_text.size() && !m_ended) Step();
        // The end of the last paragraph belongs to the control, not to the text.
        if (m_plain.ends_with('\n')) m_plain.pop_back();
        return std::move(m_plain);
    }

private:
    // How many characters stand behind a "\u" for readers that do not know it.
    int& Fallback() { return m_fallbacks[std::min(m_depth, kMostGroups) - (m_depth > 0)]; }
    bool Skipping() const { return m_skipFrom != 0; }

    void Step() {
        const char ch = m_text[m_at++];
        switch (ch) {
            case '{':
                Open();
                break;
            case '}':
                Close();
                break;
            case '\\':
                Control();
                break;
            case '\r':
            case '\n':
                break;
            case '\t':
                Put("\t");
                break;
            default:
                Put({&ch, 1});
        }
    }

    void Open() {
        const int inherited = Fallback();
        ++m_depth;
        if (m_depth <= kMostGroups) Fallback() = inherited;
        m_toSkip = 0;
    }

    void Close() {
        if (m_depth > 0) --m_depth;
        if (m_depth < m_skipFrom) m_skipFrom = 0;
        m_toSkip = 0;
        m_ended = m_depth == 0;
    }

    void Control() {
        if (m_at == m_text.size()) return;
        const char symbol = m_text[m_at];
        if (IsLetter(symbol)) {
            Word();
            return;
        }
        ++m_at;
        switch (symbol) {
            case '\'':
                Byte();
                break;
            case '*':
                Skip();
                break;
            case '~':
                Put(detail::HouseFrom1252("\xA0"));
                break;
            case '_':
                Put("-");
                break;
            case '\\':
            case '{':
            case '}':
                Put({&symbol, 1});
                break;
            case '\r':
                if (m_at < m_text.size() && m_text[m_at] == '\n') ++m_at;
                Put("\n");
                break;
            case '\n':
                Put("\n");
                break;
            case '\t':
                Put("\t");
                break;
            default:
                break;  // an optional hyphen, an index's mark: nothing that is seen
        }
    }

    void Byte() {
        const int high = m_at < m_text.size() ? HexDigit(m_text[m_at]) : -1;
        const int low = m_at + 1 < m_text.size() ? HexDigit(m_text[m_at + 1]) : -1;
        if (high < 0 || low < 0) return;
        m_at += 2;
        const char ch = static_cast<char>(high * 16 + low);
        if (ch == '\0') return;
        Put(ch == '\r' || ch == '\n' ? "\n" : detail::HouseFrom1252({&ch, 1}));
    }

    void Word() {
        const size_t begin = m_at;
        while (m_at < m_text.size() && IsLetter(m_text[m_at])) ++m_at;
        const std::string_view word = m_text.substr(begin, m_at - begin);
        const size_t digits = m_at;
        if (m_at + 1 < m_text.size() && m_text[m_at] == '-' && IsDigit(m_text[m_at + 1])) ++m_at;
        while (m_at < m_text.size() && IsDigit(m_text[m_at])) ++m_at;
        int number = -1;
        // A number that an int cannot hold counts as none.
        std::from_chars(m_text.data() + digits, m_text.data() + m_at, number);
        if (m_at < m_text.size() && m_text[m_at] == ' ') ++m_at;

        if (word == "u" && m_at > digits) {
            Unicode(number);
        } else if (word == "uc") {
            Fallback() = std::clamp(number, 0, 255);
        } else if (word == "bin") {
            m_at += std::min(m_text.size() - m_at, static_cast<size_t>(std::max(number, 0)));
        } else if (IsDestination(word)) {
            Skip();
        } else {
            for (const auto& [name, text] : kTexts) {
                if (word == name) {
                    Put(detail::HouseFrom1252(text));
                    return;
                }
            }
            if (m_toSkip > 0) --m_toSkip;
        }
    }

    // Signed 16 bits in older documents.
    void Unicode(int number) {
        const int unit = number < 0 ? number + 0x10000 : number;
        m_toSkip = 0;
        // Characters beyond the first 65,536 come as two of these.
        if (unit >= 0xD800 && unit < 0xDC00) {
            m_high = unit;
        } else {
            std::string said;
            const bool pair = m_high != 0 && unit >= 0xDC00 && unit < 0xE000;
            const int character = pair ? 0x10000 + ((m_high - 0xD800) << 10) + (unit - 0xDC00) : unit;
            const bool known = character > 0 && (pair || character < 0xD800 || (character >= 0xE000 && character < 0x10000));
            detail::AppendHouse(said, known ? static_cast<char32_t>(character) : U'?');
            m_high = 0;
            Put(said);
        }
        m_toSkip = Fallback();
    }

    void Skip() {
        if (!Skipping()) m_skipFrom = m_depth;
    }

    void Put(std::string_view text) {
        if (m_toSkip > 0)
            --m_toSkip;
        else if (!Skipping())
            m_plain += text;
    }

    const std::string_view m_text;
    size_t m_at = 0;
    bool m_ended = false;
    size_t m_depth = 0;
    size_t m_skipFrom = 0;  // the depth of the group that is left out, 0 for none
    int m_high = 0;         // the first half of a character that comes in two
    int m_toSkip = 0;       // characters of a fallback still to come
    std::array<int, kMostGroups> m_fallbacks{1};
    std::string m_plain;
};

}  // namespace

RichTextReader::RichTextReader(HWND) : m_open(true) {}
RichTextReader::~RichTextReader() = default;

std::string RichTextReader::ToPlain(const char* text) const {
    const std::string_view view(text != nullptr ? text : "");
    const bool rich = view.starts_with("{\\rtf") || view.starts_with("{\\urtf");
    return detail::WithPlainLineEnds(rich ? Reader(view).Read() : std::string(view));
}

}  // namespace orvik
