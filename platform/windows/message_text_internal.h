// Messages on their way between procedures and senders that use this house's text and windows that use UTF-16, in a process that
// chose UTF-8. Any thread; no state.
#pragma once

#include "platform/windows/door_text_internal.h"

namespace orvik::detail {
// Who takes the message further, of the other kind of text; may be asked for other messages on the way. Refers to a function
// object that outlives it.
class MessageWay {
public:
    template <class Function>
    MessageWay(const Function& function)  // NOLINT: made where a function object is given
        : m_function(&function), m_call([](const void* to, UINT message, WPARAM wParam, LPARAM lParam) {
              return (*static_cast<const Function*>(to))(message, wParam, lParam);
          }) {}
    LRESULT operator()(UINT message, WPARAM wParam, LPARAM lParam) const { return m_call(m_function, message, wParam, lParam); }

private:
    const void* m_function;
    LRESULT (*m_call)(const void*, UINT, WPARAM, LPARAM);
};

// A message with this house's text, given to who takes UTF-16.
LRESULT ToWide(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way);
// A message with UTF-16, given to who takes this house's text.
LRESULT ToNarrow(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way);

// The notifications of lists and headers, and their messages: list_view_text.cpp. False where a message is none of these with
// text.
bool ListToWide(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);
bool NoticeToWide(WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);
bool NoticeToNarrow(WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);

// The same of tool tips: tool_tip_text.cpp.
bool ToolTipToWide(HWND window, UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);
bool ToolTipNoticeToNarrow(WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);

// Positions in fields count bytes on this house's side: edit_text.cpp. False where a message has none.
bool IsField(HWND window);
bool FieldToWide(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);
bool FieldToNarrow(UINT message, WPARAM wParam, LPARAM lParam, MessageWay way, LRESULT& answer);
// Makes the field count letters in its limit from now on. Nothing where its window is of another process.
void LimitField(HWND window);

// Procedures that take this house's text, as the system calls them, and back: window_procedures.cpp. Null, with the last error,
// once there are more different ones than a process has use for.
WNDPROC WideProcedure(WNDPROC narrow);
WNDPROC NarrowProcedure(WNDPROC wide);
// Whether a procedure takes UTF-16: NarrowProcedure gave it out as it was.
bool IsWideProcedure(WNDPROC procedure);
}  // namespace orvik::detail
