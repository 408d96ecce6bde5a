#include "plugins/modbus/modbus_description.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>

#include "afx/collections.h"
#include "plugins/modbus/modbus_complaint.h"

namespace modbus {
namespace {
constexpr const char* kTypes[] = {"bool",   "int16",   "uint16",  "int32", "uint32", "int64",
                                  "uint64", "float32", "float64", "bcd16", "bcd32",  "text"};

const char* NameOf(ValueType type) { return kTypes[static_cast<size_t>(type)]; }

// The letters stand for a value's bytes, the highest one first: what comes over the line is read in the order given.
ByteOrder ReadOrder(IPropertyDB& db, const CString& key, const Channel& channel) {
    static const struct {
        const char* name;
        size_t registers;  // 0: any
        ByteOrder order;
    } orders[] = {
        {"high", 0, kHighFirst},
        {"low", 0, kLowFirst},
        {"AB", 1, kHighFirst},
        {"BA", 1, kSwapBytes},
        {"ABCD", 2, kHighFirst},
        {"BADC", 2, kSwapBytes},
        {"CDAB", 2, kSwapWords},
        {"DCBA", 2, kSwapBytes | kSwapWords},
        {"ABCDEFGH", 4, kHighFirst},
        {"BADCFEHG", 4, kSwapBytes},
        {"CDABGHEF", 4, kSwapWords},
        {"DCBAHGFE", 4, kSwapBytes | kSwapWords},
        {"EFGHABCD", 4, kSwapHalves},
        {"FEHGBADC", 4, kSwapBytes | kSwapHalves},
        {"GHEFCDAB", 4, kSwapWords | kSwapHalves},
        {"HGFEDCBA", 4, kSwapBytes | kSwapWords | kSwapHalves},
    };
    const CString text = ReadText(db, key, "high").c_str();
    // The letters of a text have an order in each register only.
    const size_t registers = channel.type == ValueType::Text ? 1 : channel.Count();
    for (const auto& order : orders) {
        if (text.CompareNoCase(order.name) == 0 && (order.registers == 0 || order.registers == registers)) return order.order;
    }
    Refuse(key, NoSuchOrder, static_cast<const char*>(text), static_cast<unsigned>(16 * registers));
}

// Numbers as manuals print them: a digit for the kind of register, then four or five for its place, from 1 on.
void ReadNotation(IPropertyDB& db, const CString& key, Channel& channel) {
    const CString text = *FindText(db, key);
    unsigned number = 0;
    const char* const end = text.GetString() + text.GetLength();
    const auto [read, error] = std::from_chars(text.GetString(), end, number);
    constexpr int kShort = 5, kLong = 6;
    const bool isLong = text.GetLength() == kLong;
    const unsigned kind = number / (isLong ? 100'000 : 10'000), place = number % (isLong ? 100'000 : 10'000);
    static const std::map<unsigned, BYTE> functions = {
        {0, kReadCoils}, {1, kReadDiscreteInputs}, {3, kReadInputRegisters}, {4, kReadHoldingRegisters}};
    const auto function = functions.find(kind);
    if (error != std::errc() || read != end || (text.GetLength() > kShort && !isLong) || function == functions.end() ||
        place == 0 || place > 65'536)
        Refuse(key, NotANotation);
    channel.function = function->second;
    channel.first = static_cast<WORD>(place - 1);
}

void ReadPlace(IPropertyDB& db, const CString& at, Channel& channel) {
    if (db.Find(at + "nNumber")) {
        for (const char* other : {"nRegister", "nFunction"}) {
            if (db.Find(at + other)) Refuse(at + "nNumber", NotBeside, other);
        }
        ReadNotation(db, at + "nNumber", channel);
        return;
    }
    channel.function =
        static_cast<BYTE>(ReadWhole(db, at + "nFunction", kReadCoils, kReadInputRegisters, DWORD{kReadHoldingRegisters}));
    channel.first = static_cast<WORD>(ReadWhole(db, at + "nRegister", 0, 65535, std::nullopt));
}

void ReadType(IPropertyDB& db, const CString& at, const Slave& slave, Channel& channel) {
    const bool coil = ReadsCoils(channel.function);
    channel.type = static_cast<ValueType>(ReadWord(db, at + "sType", coil ? "bool" : "", kTypes));
    if (coil && channel.type != ValueType::Bool) Refuse(at + "sType", CoilsAreBool);
    const bool inRegister = !coil && channel.type == ValueType::Bool, text = channel.type == ValueType::Text;
    if (db.Find(at + "nBit") && !inRegister) Refuse(at + "nBit", NotForType, coil ? "coil" : NameOf(channel.type));
    if (db.Find(at + "nLength") && !text) Refuse(at + "nLength", NotForType, NameOf(channel.type));
    if (inRegister) channel.bit = static_cast<BYTE>(ReadWhole(db, at + "nBit", 0, 15, std::nullopt));
    if (text) channel.length = static_cast<WORD>(ReadWhole(db, at + "nLength", 1, kMaxRegisters, std::nullopt));
    if (channel.Count() > slave.most) Refuse(at + "sType", MoreThanMost);
    const DWORD last = 65'536u - channel.Count();
    if (channel.first > last)
        Refuse(at + (db.Find(at + "nNumber") ? "nNumber" : "nRegister"), NotWhole, 0u, static_cast<unsigned>(last));
    channel.order = ReadOrder(db, at + "sOrder", channel);
}

void ReadScale(IPropertyDB& db, const CString& at, Channel& channel) {
    constexpr const char* kPoints[] = {"rRaw1", "rValue1", "rRaw2", "rValue2"};
    const bool points =
        std::any_of(std::begin(kPoints), std::end(kPoints), [&](const char* key) { return db.Find(at + key) != 0; });
    if (!points) {
        channel.scale = ReadReal(db, at + "rScale", 1);
        channel.offset = ReadReal(db, at + "rOffset", 0);
        if (channel.scale == 0) Refuse(at + "rScale", ScaleOfZero);
        return;
    }
    double numbers[4] = {};
    for (size_t i = 0; i < 4; ++i) {
        if (!db.Find(at + kPoints[i])) Refuse(at + kPoints[i], IsMissing);
        numbers[i] = ReadReal(db, at + kPoints[i], 0);
    }
    for (const char* other : {"rScale", "rOffset"}) {
        if (db.Find(at + other)) Refuse(at + other, NotBeside, kPoints[0]);
    }
    channel.scale = (numbers[3] - numbers[1]) / (numbers[2] - numbers[0]);
    channel.offset = numbers[1] - numbers[0] * channel.scale;
    if (!std::isfinite(channel.scale) || !std::isfinite(channel.offset) || channel.scale == 0) Refuse(at + kPoints[2], SamePoint);
}

// Decimal: the number before scale and offset. Hexadecimal, with 0x: the registers, highest byte first.
uint64_t NoneFrom(const CString& key, const CString& text, const Channel& channel) {
    const std::string lower = CString(text).MakeLower().GetString();
    uint64_t bits = 0;
    if (lower.starts_with("0x")) {
        const auto [read, error] = std::from_chars(lower.data() + 2, lower.data() + lower.size(), bits, 16);
        const bool fits = channel.Count() >= 4 || bits >> (16 * channel.Count()) == 0;
        if (error != std::errc() || read != lower.data() + lower.size()) Refuse(key, NotANumber);
        if (channel.type == ValueType::Text || !fits) Refuse(key, CannotBeThat, NameOf(channel.type));
        return bits;
    }
    const double number = NumberFrom(key, text);
    Channel plain;
    plain.type = channel.type;
    // As an unsigned number of 64 bits all ones are rounded up; they are what is meant.
    if (!CanHold(plain, number) && !(channel.type == ValueType::Uint64 && number == 0x1p64))
        Refuse(key, CannotBeThat, NameOf(channel.type));
    return BitsOf(channel.type, number);
}

void ReadNone(IPropertyDB& db, const CString& at, Channel& channel) {
    for (const char* name : {"rInvalid", "sInvalid"}) {
        const CString key = at + name;
        const std::optional<CString> list = FindText(db, key);
        if (!list) continue;
        if (channel.type == ValueType::Bool) Refuse(key, NotForType, NameOf(channel.type));
        int start = 0;
        for (CString word = list->Tokenize(" ", start); start >= 0; word = list->Tokenize(" ", start))
            channel.none.push_back(NoneFrom(key, word, channel));
    }
}

void ReadWriting(IPropertyDB& db, const CString& at, Channel& channel) {
    const CString function = at + "nWrite";
    if (!ReadFlag(db, at + "bWritable")) {
        if (db.Find(function)) Refuse(function, NotBeside, "bWritable 0");
        return;
    }
    const bool coil = channel.function == kReadCoils;
    if (!coil && channel.function != kReadHoldingRegisters) Refuse(at + "bWritable", NeverWritten);
    if (!coil && channel.type == ValueType::Bool) Refuse(at + "bWritable", BitsNotWritten);
    if (channel.type == ValueType::Text) Refuse(at + "bWritable", TextNotWritten);
    const bool one = channel.Count() == 1;
    const DWORD standard = coil ? kWriteCoil : one ? kWriteRegister : kWriteRegisters;
    const DWORD many = coil ? kWriteCoils : kWriteRegisters;
    channel.write = static_cast<BYTE>(ReadWhole(db, function, 0, 255, standard));
    if (channel.write == standard || channel.write == many) return;
    CString allowed;
    allowed.Format(standard == many ? "%u" : "%u %u", static_cast<unsigned>(standard), static_cast<unsigned>(many));
    Refuse(function, NotOneOf, static_cast<const char*>(allowed));
}

// What may stand at the top, for all slaves, and at each of them.
Slave ReadLimits(IPropertyDB& db, const CString& at, Slave slave) {
    constexpr DWORD kLongest = 600'000;  // ms
    slave.timeout = ReadWhole(db, at + "nTimeout", 1, kLongest, slave.timeout);
    slave.attempts = static_cast<int>(ReadWhole(db, at + "nAttempts", 1, 10, static_cast<DWORD>(slave.attempts)));
    slave.most = static_cast<WORD>(ReadWhole(db, at + "nMost", 1, kMaxRegisters, DWORD{slave.most}));
    slave.gap = static_cast<WORD>(ReadWhole(db, at + "nGap", 0, kMaxRegisters, DWORD{slave.gap}));
    slave.pause = ReadWhole(db, at + "nPause", 0, kLongest, slave.pause);
    return slave;
}

class Slaves {
public:
    explicit Slaves(IPropertyDB& db) : m_db(db), m_standard(ReadLimits(db, "", {})) {
        CStringArray keys;
        db.Enum("Slaves", keys, FALSE, FALSE);
        for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
            const CString at = CString("Slaves.") + keys.GetAt(i) + ".";
            Slave slave = ReadLimits(db, at, m_standard);
            slave.address = ReadAddress(at + "nSlave");
            slave.key = keys.GetAt(i);
            slave.name = ReadText(db, at + "sName", slave.key.c_str());
            if (std::any_of(m_known.begin(), m_known.end(), [&](const Slave& other) { return other.address == slave.address; }))
                Refuse(at + "nSlave", SlaveTwice, static_cast<unsigned>(slave.address));
            m_known.push_back(slave);
        }
        if (db.Find("nSlave")) m_single = ReadAddress("nSlave");
    }

    // That of a channel. Its index is the slave's among those of channels, whose order is that of the channels.
    size_t Of(const CString& at) {
        const CString byKey = at + "sSlave", byNumber = at + "nSlave";
        if (m_db.Find(byKey)) {
            if (m_db.Find(byNumber)) Refuse(byKey, NotBeside, "nSlave");
            const std::string key = ReadText(m_db, byKey, "");
            const auto found = std::find_if(m_known.begin(), m_known.end(), [&](const Slave& slave) { return slave.key == key; });
            if (found == m_known.end()) Refuse(byKey, NoSuchSlave);
            return Use(*found);
        }
        if (m_db.Find(byNumber)) return Use(WithAddress(ReadAddress(byNumber)));
        if (m_single) return Use(WithAddress(*m_single));
        if (m_known.size() == 1) return Use(m_known.front());
        if (m_known.empty()) Refuse("nSlave", IsMissing);
        Refuse(byKey, IsMissing);
    }
    const std::vector<Slave>& Used() const { return m_used; }

private:
    BYTE ReadAddress(const CString& key) { return static_cast<BYTE>(ReadWhole(m_db, key, 0, 255, std::nullopt)); }
    Slave WithAddress(BYTE address) const {
        const auto found =
            std::find_if(m_known.begin(), m_known.end(), [&](const Slave& slave) { return slave.address == address; });
        if (found != m_known.end()) return *found;
        Slave slave = m_standard;
        slave.address = address;
        return slave;
    }
    size_t Use(const Slave& slave) {
        const auto found =
            std::find_if(m_used.begin(), m_used.end(), [&](const Slave& used) { return used.address == slave.address; });
        if (found != m_used.end()) return static_cast<size_t>(found - m_used.begin());
        m_used.push_back(slave);
        return m_used.size() - 1;
    }

    IPropertyDB& m_db;
    const Slave m_standard;
    std::vector<Slave> m_known, m_used;
    std::optional<BYTE> m_single;
};

Channel ReadChannel(IPropertyDB& db, const char* key, Slaves& slaves) {
    const CString at = CString("Channels.") + key + ".";
    Channel channel;
    channel.key = key;
    channel.name = ReadText(db, at + "sName", key);
    channel.slave = slaves.Of(at);
    ReadPlace(db, at, channel);
    ReadType(db, at, slaves.Used()[channel.slave], channel);
    ReadScale(db, at, channel);
    ReadNone(db, at, channel);
    ReadWriting(db, at, channel);
    return channel;
}

}  // namespace

const char* const* DescriptionKeys() {
    static const char* const keys[] = {"nSlave",
                                       "nTimeout",
                                       "nAttempts",
                                       "nMost",
                                       "nGap",
                                       "nPause",
                                       "nPauseOpen",
                                       "Slaves.*.nSlave",
                                       "Slaves.*.sName",
                                       "Slaves.*.nTimeout",
                                       "Slaves.*.nAttempts",
                                       "Slaves.*.nMost",
                                       "Slaves.*.nGap",
                                       "Slaves.*.nPause",
                                       "Line.nBaud",
                                       "Line.nDataBits",
                                       "Line.sParity",
                                       "Line.nStopBits",
                                       "Channels.*.sSlave",
                                       "Channels.*.nSlave",
                                       "Channels.*.nFunction",
                                       "Channels.*.nRegister",
                                       "Channels.*.nNumber",
                                       "Channels.*.sType",
                                       "Channels.*.sOrder",
                                       "Channels.*.nBit",
                                       "Channels.*.nLength",
                                       "Channels.*.rScale",
                                       "Channels.*.rOffset",
                                       "Channels.*.rRaw1",
                                       "Channels.*.rValue1",
                                       "Channels.*.rRaw2",
                                       "Channels.*.rValue2",
                                       "Channels.*.rInvalid",
                                       "Channels.*.sInvalid",
                                       "Channels.*.bWritable",
                                       "Channels.*.nWrite",
                                       nullptr};
    return keys;
}

Description ReadDescription(IPropertyDB& db) {
    Description description;
    description.line = ReadLine(db);
    description.pauseOpen = ReadWhole(db, "nPauseOpen", 0, 600'000, 0u);
    Slaves slaves(db);
    CStringArray keys;
    if (!db.Enum("Channels", keys, FALSE, FALSE) || keys.GetSize() == 0) Refuse("Channels", NoChannels);
    for (int i = 0; i < static_cast<int>(keys.GetSize()); ++i)
        description.channels.push_back(ReadChannel(db, keys.GetAt(i), slaves));
    description.slaves = slaves.Used();
    return description;
}

}  // namespace modbus
