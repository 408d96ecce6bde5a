#include "comm/transport.h"

#include "comm/serial_transport_internal.h"

double CLineSettings::BitsPerCharacter() const {
    const double stop = static_cast<int>(stopBits) == 0 ? 1 : static_cast<int>(stopBits) == 1 ? 1.5 : 2;
    return 1 + static_cast<int>(dataBits) + (static_cast<int>(parity) != 0 ? 1 : 0) + stop;
}

std::unique_ptr<ITransport> OrvikMakeTransport(CSerialOrvik& port, CLineConnection& connection) {
    return std::make_unique<orvik::detail::SerialTransport>(port, connection);
}
