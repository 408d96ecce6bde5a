// Dialog templates: the module's own as bytes, and the reading of any.
#include <cstring>

#include "platform/posix/dialogs/dialog_internal.h"
#include "platform/posix/resources/embedded_dialogs_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {

// ---- Writing the extended kind.
class Writer {
public:
    std::vector<unsigned char> bytes;
    Writer& Put(DWORD value, size_t size) {
        for (size_t i = 0; i < size; ++i) bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
        return *this;
    }
    Writer& Word(DWORD value) { return Put(value, 2); }
    Writer& Text(const char* utf8) {
        std::u16string wide(std::strlen(utf8) + 1, u'\0');
        const int length = MultiByteToWideChar(CP_UTF8, 0, utf8, -1, wide.data(), static_cast<int>(wide.size()));
        for (int i = 0; i < length; ++i) Word(wide[static_cast<size_t>(i)]);
        return *this;
    }
    void Align() {
        while (bytes.size() % 4 != 0) bytes.push_back(0);
    }
};

struct SourceItem {
    const char* windowClass;
    DWORD id, style;
    int x, y, width, height;
    const char *english, *swedish;
};
struct SourceDialog {
    WORD id;
    int x, y, width, height;
    DWORD style;
    const char *english, *swedish;
    std::vector<SourceItem> items;
};

std::vector<unsigned char> Compile(const SourceDialog& dialog, bool swedish) {
    Writer out;
    const auto place = [&out](const auto& at) {
        for (const int value : {at.x, at.y, at.width, at.height}) out.Word(static_cast<DWORD>(value));
    };
    out.Word(1).Word(0xFFFF).Put(0, 4).Put(0, 4).Put(dialog.style, 4).Word(static_cast<DWORD>(dialog.items.size()));
    place(dialog);
    out.Word(0).Word(0).Text(swedish ? dialog.swedish : dialog.english);
    out.Word(8).Word(FW_NORMAL).Put(0, 1).Put(DEFAULT_CHARSET, 1).Text("MS Shell Dlg");
    for (const SourceItem& item : dialog.items) {
        out.Align();
        out.Put(0, 4).Put(0, 4).Put(WS_CHILD | WS_VISIBLE | item.style, 4);
        place(item);
        out.Put(item.id, 4).Text(item.windowClass).Text(swedish ? item.swedish : item.english).Word(0);
    }
    return std::move(out.bytes);
}

// ---- Reading both kinds.
class Reader {
public:
    explicit Reader(const void* bytes) : m_start(static_cast<const unsigned char*>(bytes)), m_at(m_start) {}

    DWORD Get(size_t size) {
        DWORD value = 0;
        for (size_t i = 0; i < size; ++i) value |= static_cast<DWORD>(*m_at++) << (8 * i);
        return value;
    }
    WORD Word() { return static_cast<WORD>(Get(2)); }
    int Short() { return static_cast<short>(Word()); }
    DWORD Long() { return Get(4); }
    TemplateName Name() {
        TemplateName name;
        WORD c = Word();
        if (c == 0xFFFF) {
            name.number = Word();
            return name;
        }
        std::u16string text;
        for (; c != 0; c = Word()) text += static_cast<char16_t>(c);
        name.text = HouseFromUtf16(text);
        return name;
    }
    void Align() { m_at = m_start + (static_cast<size_t>(m_at - m_start) + 3) / 4 * 4; }
    const unsigned char* Skip(size_t size) { return std::exchange(m_at, m_at + size); }

private:
    const unsigned char *m_start, *m_at;
};

// The predefined classes that a template may name by number.
void NameClass(TemplateName& name) {
    static constexpr const char* kNames[] = {"Button", "Edit", "Static", "ListBox", "ScrollBar", "ComboBox"};
    if (name.number >= 0x80 && name.number <= 0x85) name = {kNames[name.number - 0x80], 0};
}

template <class T>
void ReadPlace(Reader& in, T& out) {
    out.x = in.Short(), out.y = in.Short(), out.width = in.Short(), out.height = in.Short();
}

}  // namespace

std::vector<EmbeddedDialog> EmbeddedDialogs() {
    const SourceDialog sources[] = {
#define ORVIK_DIALOG(id, x, y, width, height, style, english, swedish) {id, x, y, width, height, style, english, swedish, {
#define ORVIK_CONTROL(class, id, style, x, y, width, height, english, swedish) \
    {class, id, style, x, y, width, height, english, swedish},
#define ORVIK_DIALOG_END() \
    }                      \
    }                      \
    ,
#include "res/dialogs.def"
#undef ORVIK_DIALOG
#undef ORVIK_CONTROL
#undef ORVIK_DIALOG_END
    };
    std::vector<EmbeddedDialog> dialogs;
    for (const SourceDialog& source : sources) dialogs.push_back({source.id, Compile(source, false), Compile(source, true)});
    return dialogs;
}

DialogTemplate ReadTemplate(const void* bytes) {
    DialogTemplate out;
    Reader in(bytes);
    const DWORD first = in.Long();
    const bool extended = first == 0xFFFF0001u;
    if (extended) in.Long();  // help
    out.style = extended ? 0 : first;
    out.exStyle = in.Long();
    if (extended) out.style = in.Long();
    const int count = in.Word();
    ReadPlace(in, out);
    in.Name();  // the menu: dialogs have none here
    out.windowClass = in.Name();
    out.title = in.Name();
    if (out.style & DS_SETFONT) {
        out.font.points = in.Short();
        out.font.weight = extended ? in.Short() : FW_NORMAL;
        if (extended) out.font.italic = in.Get(1) != 0, in.Get(1);
        out.font.face = in.Name().text;
    }
    for (int i = 0; i < count; ++i) {
        in.Align();
        TemplateItem item;
        if (extended) in.Long();
        const DWORD one = in.Long(), two = in.Long();
        item.style = extended ? two : one;
        item.exStyle = extended ? one : two;
        ReadPlace(in, item);
        item.id = extended ? in.Long() : in.Word();
        item.windowClass = in.Name();
        NameClass(item.windowClass);
        item.title = in.Name();
        if (const size_t size = in.Word(); size != 0) item.data = in.Skip(extended ? size : size - 2);
        out.items.push_back(std::move(item));
    }
    return out;
}

}  // namespace orvik::detail
