// ports: the serial ports present, and who holds them.
#include <algorithm>
#include <cstdio>

#include "afx/array.h"
#include "comm/serial_device.h"
#include "host/command_line/commands.h"
#include "host/words/arguments.h"
#include "host/words/isolated.h"
#include "host/words/texts.h"
#include "platform/letters.h"
#include "platform/port_holder.h"

namespace {
std::string JsonText(const std::string& utf8) {
    std::string text = "\"";
    for (const char c : utf8) {
        char escape[8];
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            text += escape;
        } else {
            text += c;
        }
    }
    return text + '"';
}

std::string HolderOf(const CString& port) {
    char holder[256];
    return OrvikPortHolder(port, holder, sizeof holder) ? ToUtf8(holder) : std::string();
}
}  // namespace

ExitCode RunPorts(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {"--json"}, 0);
    CArray<CSerialDevice, const CSerialDevice&> devices;
    CSerialDevice::EnumSerialDevices(devices);
    std::vector<std::vector<std::string>> rows;
    for (INT_PTR i = 0; i < devices.GetSize(); ++i) {
        CSerialDevice device = devices.GetAt(i);
        rows.push_back({ToUtf8(static_cast<const char*>(device.GetPortName())),
                        ToUtf8(static_cast<const char*>(device.GetDescription())), HolderOf(device.GetPortName())});
    }
    if (arguments.Has("--json")) {
        std::string json = "[";
        for (const auto& row : rows) {
            json += (json.size() > 1 ? ",\n " : "");
            json += "{\"name\": " + JsonText(row[0]) + ", \"description\": " + JsonText(row[1]) +
                    ", \"holder\": " + JsonText(row[2]) + "}";
        }
        Print(json + "]");
        return kDone;
    }
    if (rows.empty()) {
        Print(Say(Text::NoPorts));
        return kDone;
    }
    rows.insert(rows.begin(), {Say(Text::Name), Say(Text::DescriptionTitle), Say(Text::Holder)});
    size_t widths[2] = {};
    for (const auto& row : rows) {
        for (size_t i = 0; i < 2; ++i) widths[i] = std::max(widths[i], OrvikColumns(row[i]));
    }
    for (const auto& row : rows) {
        std::string line = Isolated(row[0]) + std::string(widths[0] - OrvikColumns(row[0]) + 2, ' ') + Isolated(row[1]);
        if (!row[2].empty()) line += std::string(widths[1] - OrvikColumns(row[1]) + 2, ' ') + Isolated(row[2]);
        Print(line);
    }
    return kDone;
}
