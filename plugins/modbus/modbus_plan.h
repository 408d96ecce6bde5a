// Which requests fetch which channels. Plain data for any thread.
#pragma once

#include <vector>

#include "plugins/modbus/modbus_description.h"

namespace modbus {

// One request for neighbouring channels of a slave.
struct Block {
    Request request;
    struct Part {
        size_t channel;  // index into the description's channels
        WORD offset;     // of its first register or coil within the block
    };
    std::vector<Part> parts;
};
// As few requests as each slave's limits allow, slave after slave. Registers that no channel names are asked for only where the
// slave's gap says that they may be: others may refuse them.
std::vector<Block> PlanBlocks(const Description& description);

}  // namespace modbus
