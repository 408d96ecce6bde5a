#include "plugins/modbus/modbus_plan.h"

#include <algorithm>
#include <tuple>

namespace modbus {
namespace {
DWORD MostOf(const Slave& slave, const Request& request) {
    constexpr DWORD kCoilsOfRegister = 16;
    if (!ReadsCoils(request.function)) return slave.most;
    // An adapter that repeats what it sends must not seem to answer: a request that begins so would look like three bytes of
    // coils.
    if (HIBYTE(request.first) == 3) return kCoilsOfRegister;
    return std::min<DWORD>(kMaxCoils, slave.most * kCoilsOfRegister);
}
}  // namespace

std::vector<Block> PlanBlocks(const Description& description) {
    std::vector<size_t> order(description.channels.size());
    for (size_t i = 0; i < order.size(); ++i) order[i] = i;
    const auto place = [&](size_t i) {
        const Channel& channel = description.channels[i];
        return std::tuple(channel.slave, channel.function, channel.first);
    };
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return place(a) < place(b); });
    std::vector<Block> blocks;
    for (const size_t i : order) {
        const Channel& channel = description.channels[i];
        const Slave& slave = description.slaves[channel.slave];
        const DWORD end = DWORD{channel.first} + channel.Count();
        Block* last = blocks.empty() ? nullptr : &blocks.back();
        const bool joins = last != nullptr && last->request.slave == slave.address &&
                           last->request.function == channel.function &&
                           channel.first <= DWORD{last->request.first} + last->request.count + slave.gap &&
                           end - last->request.first <= MostOf(slave, last->request);
        if (!joins) {
            blocks.push_back({{slave.address, channel.function, channel.first, 0}, {}});
            last = &blocks.back();
        }
        last->request.count = static_cast<WORD>(std::max<DWORD>(last->request.count, end - last->request.first));
        last->parts.push_back({i, static_cast<WORD>(channel.first - last->request.first)});
    }
    return blocks;
}

}  // namespace modbus
