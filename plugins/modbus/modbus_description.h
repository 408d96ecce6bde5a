// The description of a Modbus logger: line settings and channels, read from a property database (docs/formats.md has the keys).
// Also how a channel's registers become a value and back. Plain data for any thread.
#pragma once

#include <string>
#include <vector>

#include "comm/transport.h"
#include "plugins/modbus/modbus_frame.h"
#include "propdb/property_db_interface.h"

namespace modbus {

enum class ValueType { Int16, Uint16, Int32, Uint32, Float32 };
enum class WordOrder { HighFirst, LowFirst };  // which register of a 32-bit value comes first

struct Channel {
    std::string key;  // the node's name in the description
    std::string name;
    BYTE function = kReadHoldingRegisters;
    WORD first = 0;
    ValueType type = ValueType::Int16;
    WordOrder order = WordOrder::HighFirst;
    double scale = 1, offset = 0;  // value = registers as a number * scale + offset

    WORD RegisterCount() const { return type == ValueType::Int16 || type == ValueType::Uint16 ? 1 : 2; }
};

struct Description {
    BYTE slave = 1;
    CLineSettings line;
    std::vector<Channel> channels;  // in the order of their keys
};

// Reads the description at the database's using path. What is wrong is a CCommException with code 3 and a text that names the
// key.
Description ReadDescription(IPropertyDB& db);
// The keys that it reads; see ILoggerFamily.
const char* const* DescriptionKeys();

// The registers of a channel as a value; exact for every type (32 bits fit a double) before scale and offset.
double Decode(const Channel& channel, const WORD* registers);
// The nearest registers for a value, limited to the type's range: what the simulated logger holds.
void Encode(const Channel& channel, double value, WORD* registers);

// One request for neighbouring channels.
struct Block {
    Request request;
    struct Part {
        size_t channel;  // index into the description's channels
        WORD offset;     // of its first register within the block
    };
    std::vector<Part> parts;
};
// As few requests as possible without asking for a register that no channel names: a logger may refuse those.
std::vector<Block> PlanBlocks(const Description& description);

}  // namespace modbus
