"""A pymodbus server with values of every type and order, for a master to read: pymodbus_server.py [SERIAL_DEVICE], without one on the
network. Says its address, then a line for each value (slave, function, register or coil, type, order, value), then "ready"; ends when
its input does."""
import asyncio
import logging
import random
import sys

from pymodbus.constants import Endian
from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.payload import BinaryPayloadBuilder
from pymodbus.server.async_io import ModbusSerialServer, ModbusTcpServer

BITS = {"int16": 16, "uint16": 16, "int32": 32, "uint32": 32, "float32": 32, "int64": 64, "uint64": 64, "float64": 64}
# By the order of bytes in a register, and of registers.
ORDERS = {16: {(">", ">"): "AB", ("<", ">"): "BA"},
          32: {(">", ">"): "ABCD", ("<", ">"): "BADC", (">", "<"): "CDAB", ("<", "<"): "DCBA"},
          64: {(">", ">"): "ABCDEFGH", ("<", ">"): "BADCFEHG", (">", "<"): "GHEFCDAB", ("<", "<"): "HGFEDCBA"}}


def values(kind, bits):
    if kind.startswith("float"):
        return [0.0, -1.5, 1e-30, 2.0 ** 100, -123456.75]
    low, high = (0, 2 ** bits - 1) if kind.startswith("u") else (-2 ** (bits - 1), 2 ** (bits - 1) - 1)
    return [low, high, 1, random.randint(low, high)]


def registers():
    """The words of one kind of register, and what stands in them."""
    words, lines = [], []
    for kind, bits in BITS.items():
        for (byte, word), order in ORDERS[bits].items():
            for value in values(kind, bits):
                builder = BinaryPayloadBuilder(byteorder=Endian.Big if byte == ">" else Endian.Little,
                                               wordorder=Endian.Big if word == ">" else Endian.Little)
                add = {"i": "int", "u": "uint", "f": "float"}[kind[0]]
                getattr(builder, f"add_{bits}bit_{add}")(value)
                payload = b"".join(builder.build())
                lines.append((len(words), kind, order, value))
                words += [int.from_bytes(payload[i:i + 2], "big") for i in range(0, len(payload), 2)]
    return words, lines


async def serve():
    logging.disable(logging.CRITICAL)  # it calls a connection that ends an error
    slaves, said = {}, []
    for slave in (7, 9):
        blocks = {}
        for function, name in ((1, "co"), (2, "di")):
            bits = [random.random() < 0.5 for _ in range(30)]
            blocks[name] = ModbusSequentialDataBlock(0, bits)
            said += [(slave, function, i, "bool", "high", int(bit)) for i, bit in enumerate(bits)]
        for function, name in ((3, "hr"), (4, "ir")):
            words, lines = registers()
            blocks[name] = ModbusSequentialDataBlock(0, words)
            said += [(slave, function, *line) for line in lines]
        slaves[slave] = ModbusSlaveContext(**blocks, zero_mode=True)
    context = ModbusServerContext(slaves=slaves, single=False)
    if len(sys.argv) > 1:
        server = ModbusSerialServer(context, port=sys.argv[1], baudrate=19200)
        await server.start()
        serving = asyncio.get_running_loop().create_task(server.serve_forever())
        print(sys.argv[1])
    else:
        server = ModbusTcpServer(context, address=("127.0.0.1", 0))
        serving = asyncio.get_running_loop().create_task(server.serve_forever())
        await server.serving
        print(f"tcp://127.0.0.1:{server.server.sockets[0].getsockname()[1]}")
    for line in said:
        print(*(repr(part) if isinstance(part, float) else part for part in line))
    print("ready", flush=True)
    await asyncio.get_running_loop().run_in_executor(None, sys.stdin.read)
    serving.cancel()


asyncio.run(serve())
