// Modbus messages on a network connection: each behind a head of a transaction number, the protocol's number (0), the length of
// what follows, and the slave ("unit"). Layout of the Modbus messaging on TCP/IP guide, V1.0b. A stream has no place to begin
// anew: a head that cannot be one means that everything after it is lost. Bytes only; any thread.
#pragma once

#include "plugins/modbus/modbus_frame.h"

namespace modbus {

std::vector<BYTE> NetworkFrame(WORD transaction, BYTE slave, std::span<const BYTE> message);

enum class NetworkEnd {
    More,    // what came is the beginning of a frame
    Whole,   // a frame begins it; `used` gets its length
    Broken,  // no frame begins so, or its lengths contradict each other
};
NetworkEnd FirstAnswer(std::span<const BYTE> received, WORD& transaction, Answer& answer, size_t& used);
NetworkEnd FirstRequest(std::span<const BYTE> received, WORD& transaction, Request& request, size_t& used);

}  // namespace modbus
