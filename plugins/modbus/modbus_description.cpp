#include "plugins/modbus/modbus_description.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <optional>

#include "afx/collections.h"
#include "afx/string.h"
#include "comm/comm_exception.h"
#include "frame/numeric_arrays.h"

namespace modbus {
namespace {

[[noreturn]] void Refuse(const CString& key, const char* what) {
    CString text;
    text.Format("%s: %s", static_cast<const char*>(key), what);
    OrvikThrowCommException(CCommException::BadProtocol, text);
}

// The number that a text says, with nothing but blanks around it.
double NumberFrom(const CString& key, CString text) {
    text.Trim();
    const char* const end = text.GetString() + text.GetLength();
    double number = 0;
    const auto [read, error] = std::from_chars(text.GetString(), end, number);
    if (error == std::errc() && read == end) return number;
    Refuse(key, text.Find(',') >= 0 ? "not a number; decimals stand behind a point" : "not a number");
}

// A number of any kind that a person may have chosen for it; nothing when the key is missing.
std::optional<double> FindNumber(IPropertyDB& db, const CString& key) {
    if (!db.Find(key)) return std::nullopt;
    unsigned short word = 0;
    unsigned int dword = 0;
    __int64 big = 0;
    float single = 0;
    double real = 0;
    CString text;
    if (db.GetValue(key, word)) return word;
    if (db.GetValue(key, dword)) return dword;
    if (db.GetValue(key, big)) return static_cast<double>(big);
    if (db.GetValue(key, single)) return single;
    if (db.GetValue(key, real)) return real;
    CByteArray bytes;
    CInt32Array ints;
    if (db.GetValue(key, bytes) && bytes.GetSize() == 1) return bytes[0];
    if (db.GetValue(key, ints) && ints.GetSize() == 1) return ints[0];
    if (db.GetValue(key, text)) return NumberFrom(key, text);
    Refuse(key, "not a number");
}

DWORD ReadWhole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard) {
    const std::optional<double> value = FindNumber(db, key);
    if (!value && standard) return *standard;
    if (!value) Refuse(key, "missing");
    if (*value < low || *value > high || *value != std::floor(*value)) {
        CString range;
        range.Format("not a whole number from %u to %u", low, high);
        Refuse(key, range);
    }
    return static_cast<DWORD>(*value);
}

double ReadReal(IPropertyDB& db, const CString& key, double standard) {
    const std::optional<double> value = FindNumber(db, key);
    if (value && !std::isfinite(*value)) Refuse(key, "not a finite number");
    return value.value_or(standard);
}

CString ReadText(IPropertyDB& db, const CString& key, const char* standard) {
    CString text = standard;
    if (db.Find(key) && !db.GetValue(key, text)) Refuse(key, "not a text");
    return text;
}

template <class T>
T ReadChoice(IPropertyDB& db, const CString& key, const char* standard, const std::map<std::string, T>& choices) {
    CString text = ReadText(db, key, standard);
    text.MakeLower();
    const auto found = choices.find(static_cast<const char*>(text));
    if (found != choices.end()) return found->second;
    std::string allowed = "not one of";
    for (const auto& [name, value] : choices) allowed += ' ' + name;
    Refuse(key, allowed.c_str());
}

Channel ReadChannel(IPropertyDB& db, const char* key) {
    const CString at = CString("Channels.") + key + ".";
    Channel channel;
    channel.key = key;
    channel.name = ReadText(db, at + "sName", key);
    channel.function = static_cast<BYTE>(
        ReadWhole(db, at + "nFunction", kReadHoldingRegisters, kReadInputRegisters, DWORD{kReadHoldingRegisters}));
    channel.type = ReadChoice<ValueType>(db, at + "sType", "",
                                         {{"int16", ValueType::Int16},
                                          {"uint16", ValueType::Uint16},
                                          {"int32", ValueType::Int32},
                                          {"uint32", ValueType::Uint32},
                                          {"float32", ValueType::Float32}});
    channel.order =
        ReadChoice<WordOrder>(db, at + "sOrder", "high", {{"high", WordOrder::HighFirst}, {"low", WordOrder::LowFirst}});
    channel.first = static_cast<WORD>(ReadWhole(db, at + "nRegister", 0, 65536u - channel.RegisterCount(), std::nullopt));
    channel.scale = ReadReal(db, at + "rScale", 1);
    channel.offset = ReadReal(db, at + "rOffset", 0);
    if (channel.scale == 0) Refuse(at + "rScale", "a scale of 0 would lose the value");
    return channel;
}

}  // namespace

const char* const* DescriptionKeys() {
    static const char* const keys[] = {"nSlave",
                                       "Line.nBaud",
                                       "Line.nDataBits",
                                       "Line.sParity",
                                       "Line.nStopBits",
                                       "Channels.*.nFunction",
                                       "Channels.*.nRegister",
                                       "Channels.*.sType",
                                       "Channels.*.sOrder",
                                       "Channels.*.rScale",
                                       "Channels.*.rOffset",
                                       nullptr};
    return keys;
}

Description ReadDescription(IPropertyDB& db) {
    Description description;
    description.slave = static_cast<BYTE>(ReadWhole(db, "nSlave", 1, 247, std::nullopt));
    description.line.baud = ReadWhole(db, "Line.nBaud", 50, 4'000'000, 9600u);
    description.line.dataBits = static_cast<CSerial::EDataBits>(ReadWhole(db, "Line.nDataBits", 7, 8, 8u));
    description.line.parity = static_cast<CSerial::EParity>(
        ReadChoice<int>(db, "Line.sParity", "none", {{"none", 0}, {"odd", 1}, {"even", 2}, {"mark", 3}, {"space", 4}}));
    description.line.stopBits =
        ReadWhole(db, "Line.nStopBits", 1, 2, 1u) == 2 ? static_cast<CSerial::EStopBits>(2) : static_cast<CSerial::EStopBits>(0);
    CStringArray keys;
    if (!db.Enum("Channels", keys, FALSE, FALSE) || keys.GetSize() == 0) Refuse("Channels", "no channels");
    for (int i = 0; i < static_cast<int>(keys.GetSize()); ++i) description.channels.push_back(ReadChannel(db, keys.GetAt(i)));
    return description;
}

double Decode(const Channel& channel, const WORD* registers) {
    const DWORD high = channel.order == WordOrder::HighFirst ? registers[0] : channel.RegisterCount() == 2 ? registers[1] : 0;
    const DWORD low = channel.RegisterCount() == 1 ? 0 : channel.order == WordOrder::HighFirst ? registers[1] : registers[0];
    const DWORD both = high << 16 | low;
    double raw = 0;
    switch (channel.type) {
        case ValueType::Int16:
            raw = static_cast<int16_t>(registers[0]);
            break;
        case ValueType::Uint16:
            raw = registers[0];
            break;
        case ValueType::Int32:
            raw = static_cast<int32_t>(both);
            break;
        case ValueType::Uint32:
            raw = both;
            break;
        case ValueType::Float32:
            raw = std::bit_cast<float>(both);
            break;
    }
    const double scaled = raw * channel.scale;
    return channel.offset == 0 ? scaled : scaled + channel.offset;  // adding 0 would turn -0 into 0
}

void Encode(const Channel& channel, double value, WORD* registers) {
    const double raw = (value - channel.offset) / channel.scale;
    const auto limited = [&](double low, double high) {
        return static_cast<int64_t>(std::llround(std::clamp(std::isnan(raw) ? 0 : raw, low, high)));
    };
    DWORD both = 0;
    switch (channel.type) {
        case ValueType::Int16:
            registers[0] = static_cast<WORD>(limited(-32768, 32767));
            return;
        case ValueType::Uint16:
            registers[0] = static_cast<WORD>(limited(0, 65535));
            return;
        case ValueType::Int32:
            both = static_cast<DWORD>(limited(std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()));
            break;
        case ValueType::Uint32:
            both = static_cast<DWORD>(limited(0, std::numeric_limits<uint32_t>::max()));
            break;
        case ValueType::Float32:
            both = std::bit_cast<DWORD>(static_cast<float>(raw));
            break;
    }
    registers[channel.order == WordOrder::HighFirst ? 0 : 1] = HIWORD(both);
    registers[channel.order == WordOrder::HighFirst ? 1 : 0] = LOWORD(both);
}

std::vector<Block> PlanBlocks(const Description& description) {
    std::vector<size_t> order(description.channels.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto place = [&](size_t i) { return std::pair(description.channels[i].function, description.channels[i].first); };
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return place(a) < place(b); });
    std::vector<Block> blocks;
    for (const size_t i : order) {
        const Channel& channel = description.channels[i];
        const DWORD end = DWORD{channel.first} + channel.RegisterCount();
        Block* last = blocks.empty() ? nullptr : &blocks.back();
        const bool joins = last != nullptr && last->request.function == channel.function &&
                           channel.first <= DWORD{last->request.first} + last->request.count &&
                           end - last->request.first <= kMaxRegisters;
        if (!joins) {
            blocks.push_back({{description.slave, channel.function, channel.first, 0}, {}});
            last = &blocks.back();
        }
        last->request.count = static_cast<WORD>(std::max<DWORD>(last->request.count, end - last->request.first));
        last->parts.push_back({i, static_cast<WORD>(channel.first - last->request.first)});
    }
    return blocks;
}

}  // namespace modbus
