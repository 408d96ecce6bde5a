// What a description of a Modbus logger may be told besides what any may be (plugins/support/description_reading.h): texts of the
// module, whose first %s is the key.
#pragma once

#include "plugins/support/description_reading.h"

namespace modbus {

using namespace orvik::description;

enum ModbusComplaint : UINT {
    NoSuchOrder = 8310,  // and the order, and bits
    NotForType,          // and the type
    NoSuchSlave,
    SlaveTwice,  // and its number
    NotANotation,
    CoilsAreBool,
    MoreThanMost,
    CannotBeThat,  // and the type
    NeverWritten,
    BitsNotWritten,
    TextNotWritten,
    SamePoint,
};

}  // namespace modbus
