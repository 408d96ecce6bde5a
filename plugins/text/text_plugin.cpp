// The family of loggers that print lines: what the host finds in this plug-in.
#include "frame/plugin_stamp.h"
#include "host/logger_family.h"
#include "plugins/text/text_learn.h"
#include "plugins/text/text_logger.h"
#include "plugins/text/text_simulator.h"

ORVIK_PLUGIN("Text");

namespace {
class Family final : public ILoggerFamily {
public:
    CView* CreateView() override { return nullptr; }  // no window of its own: readings are shown by the host
    ILogger* CreateLogger(IPropertyDB& description) override { return new text::Logger(text::ReadDescription(description)); }
    ILoggerSimulator* CreateSimulator(IPropertyDB& description) override {
        return new text::Simulator(text::ReadDescription(description));
    }
    const char* const* DescriptionKeys() override { return text::DescriptionKeys(); }
    int Learn(const BYTE* heard, size_t size, DWORD pause, IPropertyDB& description, CString& shown) override {
        return text::Learn({reinterpret_cast<const char*>(heard), size}, pause, description, shown);
    }
};
}  // namespace

extern "C" ORVIK_PLUGIN_EXPORT ILoggerFamily* OrvikPlugin_Family() {
    static Family family;
    return &family;
}
