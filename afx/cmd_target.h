// The base of everything that takes messages, and the message maps that say which member answers which message.
// Maps are constant data of their classes. An object is used on its window's thread.
#pragma once

#include "afx/object.h"

class CCmdTarget;
class CWnd;

using AFX_PMSG = LRESULT (CWnd::*)(WPARAM, LPARAM);

// One line of a map: a message by number, or by the variable that holds its registered number. The last line has no member.
struct AFX_MSGMAP_ENTRY {
    UINT nMessage;
    const UINT* pRegisteredMessage;
    AFX_PMSG pfn;
};

struct AFX_MSGMAP {
    const AFX_MSGMAP* (*pfnGetBaseMap)();  // null for the last
    const AFX_MSGMAP_ENTRY* lpEntries;
};

class ORVIK_API CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)

public:
    CCmdTarget() = default;

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
// Members are LRESULT (WPARAM, LPARAM).
#define ON_MESSAGE(message, memberFxn) {message, nullptr, static_cast<AFX_PMSG>(&ThisClass::memberFxn)},
// The variable is read when a message comes, so it may be registered after this map is first used.
#define ON_REGISTERED_MESSAGE(nMessageVariable, memberFxn) {0, &nMessageVariable, static_cast<AFX_PMSG>(&ThisClass::memberFxn)},

#define END_MESSAGE_MAP()                                                       \
    { 0, nullptr, nullptr }                                                     \
    }                                                                           \
    ;                                                                           \
    static const AFX_MSGMAP s_map = {&BaseClass::GetThisMessageMap, s_entries}; \
    return &s_map;                                                              \
    }
