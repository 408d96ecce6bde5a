#include "platform/rich_text.h"

#include <richedit.h>

#include <string>
#include <string_view>

#include "platform/house_text.h"

namespace orvik {
namespace {
// Of riched20.dll, version 2.0 and later: each takes one kind of text, whatever function brings it.
const char* ControlClass() { return OrvikTextCodePage() == CP_UTF8 ? "RichEdit20W" : "RichEdit20A"; }

// Formatted text is bytes, and says a character beyond them in words of its own. The control knows it as bytes alone.
std::string InItsOwnWords(const std::string& text) {
    std::wstring wide(text.size(), L'\0');
    const int size = static_cast<int>(text.size());
    wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_UTF8, 0, text.c_str(), size, wide.data(), size)));
    std::string words;
    for (const wchar_t unit : wide) {
        if (unit < 0x80)
            words += static_cast<char>(unit);
        else
            words += "\\u" + std::to_string(static_cast<short>(unit)) + "?";
    }
    return words;
}

bool Put(HWND control, const char* text) {
    const std::string_view given(text);
    const bool formatted = given.starts_with("{\\rtf") || given.starts_with("{\\urtf");
    if (OrvikTextCodePage() != CP_UTF8 || !formatted) return ::SetWindowTextA(control, text);
    const std::string words = InItsOwnWords(text);
    SETTEXTEX how = {ST_DEFAULT, CP_ACP};
    return ::SendMessageA(control, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&how), reinterpret_cast<LPARAM>(words.c_str())) != 0;
}
}  // namespace

RichTextReader::RichTextReader(HWND owner) : m_library(::LoadLibraryA("riched20.dll")) {
    if (m_library == nullptr) return;
    m_control = ::CreateWindowExA(0, ControlClass(), "", WS_CHILD | ES_MULTILINE, 0, 0, 100, 100,
                                  owner != nullptr ? owner : HWND_MESSAGE, nullptr, ::GetModuleHandleA(nullptr), nullptr);
    m_open = m_control != nullptr;
    // The control's own limit, 32,767 characters, would cut texts.
    if (m_open) ::SendMessageA(m_control, EM_EXLIMITTEXT, 0, 0x7FFFFFFE);
}

RichTextReader::~RichTextReader() {
    if (m_control != nullptr) ::DestroyWindow(m_control);
    if (m_library != nullptr) ::FreeLibrary(m_library);
}

std::string RichTextReader::ToPlain(const char* text) const {
    if (!m_open || !Put(m_control, text != nullptr ? text : "")) return {};
    std::string plain(static_cast<size_t>(::GetWindowTextLengthA(m_control)), '\0');
    // With room for the final 0, which a string has.
    plain.resize(static_cast<size_t>(::GetWindowTextA(m_control, plain.data(), static_cast<int>(plain.size() + 1))));
    return detail::WithPlainLineEnds(plain);
}

}  // namespace orvik
