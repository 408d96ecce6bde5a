// The base of everything that takes messages and commands, and the message maps that say which member answers which.
// Maps are constant data of their classes. A member's parameters and result are those of the framework's documentation; another
// signature does not compile. An object is used on its window's thread.
#pragma once

#include "afx/object.h"

class CCmdTarget;
class CCmdUI;
class CWnd;

#define afx_msg

// What a map's line gets to hand on: a message, or a command with its id.
struct AFX_MSG_ARGS {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    UINT nID;
    void* pExtra;  // a command's CCmdUI or AFX_NOTIFY
};

// One line of a map. A message is named by number, or by the variable that holds its registered number; a command by the message
// it comes with (WM_COMMAND, WM_NOTIFY), its code and a range of ids. The last line has no function.
struct AFX_MSGMAP_ENTRY {
    UINT nMessage, nCode, nID, nLastID;
    const UINT* pRegisteredMessage;
    // Calls the member, and says whether that was all (non-zero) or the search goes on.
    BOOL (*pfnCall)(CCmdTarget& target, const AFX_MSG_ARGS& args, LRESULT& answer);
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();  // null for the last
    const AFX_MSGMAP_ENTRY* lpEntries;
};

// A notification (WM_NOTIFY) and where its answer goes.
struct AFX_NOTIFY {
    LRESULT* pResult;
    NMHDR* pNMHDR;
};

// Who would take a command, for who only asks.
struct AFX_CMDHANDLERINFO {
    CCmdTarget* pTarget;
};

#define CN_COMMAND 0
#define CN_UPDATE_COMMAND_UI (-1)
// Notifications that a parent hands back to the control itself come as their message number plus this.
#define WM_REFLECT_BASE 0xBC00u

class ORVIK_API CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)

public:
    CCmdTarget() = default;

    // Calls the member for a command: nCode is CN_COMMAND, CN_UPDATE_COMMAND_UI (pExtra a CCmdUI), a control's notification code,
    // or MAKELONG(code, WM_NOTIFY) (pExtra an AFX_NOTIFY). Non-zero if there was one. With pHandlerInfo it is only looked for.
    virtual BOOL OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo);

protected:
    virtual const AFX_MSGMAP* GetMessageMap() const;
    static const AFX_MSGMAP* GetThisMessageMap();
};

#define DECLARE_MESSAGE_MAP()                     \
protected:                                        \
    static const AFX_MSGMAP* GetThisMessageMap(); \
    const AFX_MSGMAP* GetMessageMap() const override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                        \
    const AFX_MSGMAP* theClass::GetMessageMap() const { return GetThisMessageMap(); } \
    const AFX_MSGMAP* theClass::GetThisMessageMap() {                                 \
        using ThisClass [[maybe_unused]] = theClass;                                  \
        using BaseClass = baseClass;                                                  \
        static const AFX_MSGMAP_ENTRY s_entries[] = {
#define END_MESSAGE_MAP()                                                       \
    { 0, 0, 0, 0, nullptr, nullptr }                                            \
    }                                                                           \
    ;                                                                           \
    static const AFX_MSGMAP s_map = {&BaseClass::GetThisMessageMap, s_entries}; \
    return &s_map;                                                              \
    }

// A line's end: `signature` is the member's type around the name `member`; `call` uses self, member, args and answer.
#define ORVIK_MESSAGE_CALL(signature, memberFxn, call)                                                            \
    [](CCmdTarget& target, [[maybe_unused]] const AFX_MSG_ARGS& args, [[maybe_unused]] LRESULT& answer) -> BOOL { \
        signature = &ThisClass::memberFxn;                                                                        \
        ThisClass& self = static_cast<ThisClass&>(target);                                                        \
        call;                                                                                                     \
        return TRUE;                                                                                              \
    }
#define ORVIK_ON_COMMAND(message, code, first, last, signature, memberFxn, call) \
    {message,                                                                    \
     static_cast<UINT>(code),                                                    \
     static_cast<UINT>(first),                                                   \
     static_cast<UINT>(last),                                                    \
     nullptr,                                                                    \
     ORVIK_MESSAGE_CALL(signature, memberFxn, call)},
#define ORVIK_ON_MESSAGE(message, signature, memberFxn, call) ORVIK_ON_COMMAND(message, 0, 0, 0, signature, memberFxn, call)

// Members are LRESULT (WPARAM, LPARAM).
#define ON_MESSAGE(message, memberFxn)                                                 \
    ORVIK_ON_MESSAGE(message, LRESULT (ThisClass::*member)(WPARAM, LPARAM), memberFxn, \
                     answer = (self.*member)(args.wParam, args.lParam))
// The variable is read when a message comes, so it may be registered after this map is first used.
#define ON_REGISTERED_MESSAGE(nMessageVariable, memberFxn)                      \
    {0,                                                                         \
     0,                                                                         \
     0,                                                                         \
     0,                                                                         \
     &nMessageVariable,                                                         \
     ORVIK_MESSAGE_CALL(LRESULT(ThisClass::*member)(WPARAM, LPARAM), memberFxn, \
                        answer = (self.*member)(args.wParam, args.lParam))},

// void ()
#define ON_COMMAND(id, memberFxn) ORVIK_ON_CONTROL(CN_COMMAND, id, id, memberFxn)
#define ON_CONTROL(wNotifyCode, id, memberFxn) ORVIK_ON_CONTROL(wNotifyCode, id, id, memberFxn)
#define ORVIK_ON_CONTROL(code, first, last, memberFxn) \
    ORVIK_ON_COMMAND(WM_COMMAND, code, first, last, void (ThisClass::*member)(), memberFxn, (self.*member)())
// void (UINT nID)
#define ON_COMMAND_RANGE(id, idLast, memberFxn) ON_CONTROL_RANGE(CN_COMMAND, id, idLast, memberFxn)
#define ON_CONTROL_RANGE(wNotifyCode, id, idLast, memberFxn) \
    ORVIK_ON_COMMAND(WM_COMMAND, wNotifyCode, id, idLast, void (ThisClass::*member)(UINT), memberFxn, (self.*member)(args.nID))
// BOOL (UINT nID): zero leaves the command to others
#define ON_COMMAND_EX(id, memberFxn) \
    ORVIK_ON_COMMAND(WM_COMMAND, CN_COMMAND, id, id, BOOL (ThisClass::*member)(UINT), memberFxn, return (self.*member)(args.nID))
// void (CCmdUI*)
#define ON_UPDATE_COMMAND_UI(id, memberFxn) ON_UPDATE_COMMAND_UI_RANGE(id, id, memberFxn)
#define ON_UPDATE_COMMAND_UI_RANGE(id, idLast, memberFxn)                                                         \
    ORVIK_ON_COMMAND(WM_COMMAND, CN_UPDATE_COMMAND_UI, id, idLast, void (ThisClass::*member)(CCmdUI*), memberFxn, \
                     (self.*member)(static_cast<CCmdUI*>(args.pExtra)))
// void (NMHDR*, LRESULT*)
#define ORVIK_ON_NOTIFY(message, code, first, last, memberFxn)                                                 \
    ORVIK_ON_COMMAND(                                                                                          \
        message, static_cast<WORD>(code), first, last, void (ThisClass::*member)(NMHDR*, LRESULT*), memberFxn, \
        (self.*member)(static_cast<AFX_NOTIFY*>(args.pExtra)->pNMHDR, static_cast<AFX_NOTIFY*>(args.pExtra)->pResult))
#define ON_NOTIFY(wNotifyCode, id, memberFxn) ORVIK_ON_NOTIFY(WM_NOTIFY, wNotifyCode, id, id, memberFxn)
#define ON_NOTIFY_REFLECT(wNotifyCode, memberFxn) ORVIK_ON_NOTIFY(WM_REFLECT_BASE + WM_NOTIFY, wNotifyCode, 0, 0, memberFxn)
// void (UINT nID, NMHDR*, LRESULT*)
#define ON_NOTIFY_RANGE(wNotifyCode, id, idLast, memberFxn)                                                                  \
    ORVIK_ON_COMMAND(                                                                                                        \
        WM_NOTIFY, static_cast<WORD>(wNotifyCode), id, idLast, void (ThisClass::*member)(UINT, NMHDR*, LRESULT*), memberFxn, \
        (self.*member)(args.nID, static_cast<AFX_NOTIFY*>(args.pExtra)->pNMHDR, static_cast<AFX_NOTIFY*>(args.pExtra)->pResult))
// void (): the control's own notification
#define ON_CONTROL_REFLECT(wNotifyCode, memberFxn) \
    ORVIK_ON_COMMAND(WM_REFLECT_BASE + WM_COMMAND, wNotifyCode, 0, 0, void(ThisClass::*member)(), memberFxn, (self.*member)())

// The notification codes of buttons, edits, combo boxes and list boxes by their documented names.
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(0, id, memberFxn)
#define ON_BN_DOUBLECLICKED(id, memberFxn) ON_CONTROL(5, id, memberFxn)
#define ON_BN_SETFOCUS(id, memberFxn) ON_CONTROL(6, id, memberFxn)
#define ON_BN_KILLFOCUS(id, memberFxn) ON_CONTROL(7, id, memberFxn)
#define ON_STN_CLICKED(id, memberFxn) ON_CONTROL(0, id, memberFxn)
#define ON_EN_SETFOCUS(id, memberFxn) ON_CONTROL(0x0100, id, memberFxn)
#define ON_EN_KILLFOCUS(id, memberFxn) ON_CONTROL(0x0200, id, memberFxn)
#define ON_EN_CHANGE(id, memberFxn) ON_CONTROL(0x0300, id, memberFxn)
#define ON_EN_UPDATE(id, memberFxn) ON_CONTROL(0x0400, id, memberFxn)
#define ON_CBN_SELCHANGE(id, memberFxn) ON_CONTROL(1, id, memberFxn)
#define ON_CBN_DBLCLK(id, memberFxn) ON_CONTROL(2, id, memberFxn)
#define ON_CBN_EDITCHANGE(id, memberFxn) ON_CONTROL(5, id, memberFxn)
#define ON_LBN_SELCHANGE(id, memberFxn) ON_CONTROL(1, id, memberFxn)
#define ON_LBN_DBLCLK(id, memberFxn) ON_CONTROL(2, id, memberFxn)
