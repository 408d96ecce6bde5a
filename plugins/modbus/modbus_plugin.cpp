// The Modbus family: what the host finds in this plug-in.
#include "frame/plugin_stamp.h"
#include "host/logger_family.h"
#include "plugins/modbus/modbus_logger.h"
#include "plugins/modbus/modbus_simulator.h"

ORVIK_PLUGIN("Modbus");

namespace {
class Family final : public ILoggerFamily {
public:
    CView* CreateView() override { return nullptr; }  // no window of its own: readings are shown by the host
    ILogger* CreateLogger(IPropertyDB& description) override { return new modbus::Logger(modbus::ReadDescription(description)); }
    ILoggerSimulator* CreateSimulator(IPropertyDB& description) override {
        return new modbus::Simulator(modbus::ReadDescription(description));
    }
    const char* const* DescriptionKeys() override { return modbus::DescriptionKeys(); }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ILoggerFamily* OrvikPlugin_Family() {
    static Family family;
    return &family;
}
