"""Session files for tests, in the archive form that docs/formats.md describes, written without the system under test."""
import struct


class Archive:
    """The framework's object format: classes and objects count in one sequence, from 1."""

    def __init__(self):
        self.data = bytearray(b"\0\0")
        self.next, self.classes = 1, {}

    def text(self, text):
        raw = text.encode("cp1252")
        self.data += (bytes([len(raw)]) if len(raw) < 255 else b"\xff" + struct.pack("<H", len(raw))) + raw

    def count(self, number):
        self.data += struct.pack("<H", number) if number < 0xFFFF else struct.pack("<HI", 0xFFFF, number)

    def begin(self, name, schema):
        if name in self.classes:
            self.data += struct.pack("<H", 0x8000 | self.classes[name])
        else:
            self.data += struct.pack("<HHH", 0xFFFF, schema, len(name)) + name.encode()
            self.classes[name] = self.next
            self.next += 1
        self.next += 1

    def value(self, value):
        if isinstance(value, dict):
            self.begin("CMapStringToOb", 0)
            self.node(value)
        elif isinstance(value, str):
            self.begin("CStringArray", 0)
            self.count(1)
            self.text(value)
        else:
            kind, numbers = value
            name, schema, code = {"i64": ("CInt64Array", 1, "q"), "r64": ("CDoubleArray", 1, "d"), "u32": ("CDWordArray", 0, "I"),
                                  "r32": ("CFloatArray", 1, "f")}[kind]
            self.begin(name, schema)
            self.count(len(numbers))
            self.data += struct.pack(f"<{len(numbers)}{code}", *numbers)

    def node(self, entries):
        self.count(len(entries))
        for name, value in entries.items():
            self.text(name)
            self.value(value)


def write_session(path, times, channels, logger="Weather station", **more):
    """`times` in microseconds since 1970, `channels` a list of (name, unit, values); `more` are further folders."""
    archive = Archive()
    archive.node({
        "Session": {"sFamily": "Modbus", "sLogger": logger, "sPort": "COM1", "tTimes": ("i64", times)},
        "Channels": {str(i + 1): {"sName": name, "sUnit": unit, "rValues": ("r64", values)} for i, (name, unit, values) in enumerate(channels)},
        **more
    })
    path.write_bytes(archive.data)


def context(origin, extent, index=0, picture="#######.#"):
    """What a chart remembers of a unit's axis."""
    return {"sFormat": picture, "rOrg": ("r64", [origin]), "rExt": ("r64", [extent]), "Index": ("u32", [index])}
