// One end of a telnet connection (RFC 854): data in which the byte 255 is doubled, and among it commands by which both ends agree
// what each of them does. Only what has come in whole counts; bytes may come in any pieces. No thread of its own; owns nothing
// else.
#pragma once

#include <initializer_list>
#include <span>
#include <vector>

#include "platform/win32.h"

class ORVIK_API TelnetEnd {
public:
    static constexpr BYTE kBinary = 0, kSuppressGoAhead = 3, kComPort = 44;  // options

    // `own`: what this end can do, `theirs`: what it wants the far end to do.
    TelnetEnd(std::initializer_list<BYTE> own, std::initializer_list<BYTE> theirs);
    virtual ~TelnetEnd();

    // Appends to `out` the wish for all of that.
    void Begin(std::vector<BYTE>& out);
    // Takes what has come: its data are appended to `data`, and the answers that it asks for to `out`.
    void Feed(std::span<const BYTE> bytes, std::vector<BYTE>& data, std::vector<BYTE>& out);

    // Appends data, doubled where need be; and a message that belongs to an option.
    static void Escape(std::span<const BYTE> data, std::vector<BYTE>& out);
    static void AppendMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>& out);

protected:
    // The far end has agreed to an option that this end does, or will have none of it.
    virtual void OnOwnOption(BYTE option, bool agreed, std::vector<BYTE>& out);
    // A message that belongs to an option. One of more than 256 bytes is none.
    virtual void OnMessage(BYTE option, std::span<const BYTE> content, std::vector<BYTE>& out);

private:
    enum EState : BYTE { Foreign, Off, Asked, On };  // Foreign: not for this end
    enum EPlace : BYTE { Data, Command, Option, Message, MessageCommand };
    void Negotiate(BYTE verb, BYTE option, std::vector<BYTE>& out);
    void Take(BYTE octet, std::vector<BYTE>& data, std::vector<BYTE>& out);

    EState m_own[256] = {}, m_theirs[256] = {};
    EPlace m_place = Data;
    BYTE m_verb = 0;
    std::vector<BYTE> m_message;  // its option first
};
