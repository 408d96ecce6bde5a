#include "plugins/modbus/modbus_description.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "afx/collections.h"
#include "plugins/support/description_reading.h"

namespace modbus {
namespace {
using namespace orvik::description;

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
    description.line = ReadLine(db);
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
