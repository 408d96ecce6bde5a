// write: set one channel of a logger, and show what it then holds.
#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/app/stop_request.h"
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/measurement/download.h"
#include "host/session/column_format.h"
#include "host/session/value_text.h"
#include "host/words/arguments.h"
#include "host/words/plain_digits.h"
#include "host/words/same_text.h"
#include "host/words/texts.h"

namespace {
std::string WithDecimalSign(std::string digits) {
    if (const size_t point = digits.find('.'); point != std::string::npos) digits.replace(point, 1, DecimalSign());
    return digits;
}

// What was typed as a logger takes it: with a point as it is, in the user's format as that is read.
std::string WithPoint(const std::string& typed, double value) {
    const char* const begin = typed.data() + (typed.starts_with('+') ? 1 : 0);
    double read = 0;
    const auto [end, error] = std::from_chars(begin, typed.data() + typed.size(), read);
    return error == std::errc() && end == typed.data() + typed.size() ? begin : TextOf(value);
}

// A number whose "." parts thousands for its user, and decimals for programs, could set a device to a thousand times what was
// meant.
void RefuseTwoReadings(const std::string& typed, double value) {
    constexpr double kSame = 1e-9;  // the readers agree to so much
    const std::optional<double> own = RealInUsersFormat(typed);
    if (!own || std::abs(*own - value) <= kSame * std::max(std::abs(*own), std::abs(value))) return;
    throw Failure{kWrongUse, Say(Text::ValueAmbiguous, {typed, WithDecimalSign(TextOf(value)), WithDecimalSign(TextOf(*own))})};
}

// A channel by its key or, where no other has it, by its name.
size_t ChannelOf(const Session& session, const std::string& wanted) {
    const std::vector<Session::Channel>& all = session.Channels();
    std::vector<size_t> named;
    std::string there, keys;
    for (size_t i = 0; i < all.size(); ++i) {
        if (LookTheSame(all[i].key, wanted)) return i;
        there += (i == 0 ? "" : ", ") + ToUtf8(all[i].name);
        if (!LookTheSame(all[i].name, wanted)) continue;
        keys += (named.empty() ? "" : ", ") + ToUtf8(all[i].key);
        named.push_back(i);
    }
    if (named.empty()) throw Failure{kWrongUse, Say(Text::NoChannel, {ToUtf8(wanted), there})};
    if (named.size() > 1) throw Failure{kWrongUse, Say(Text::ChannelTwice, {ToUtf8(wanted), keys})};
    return named.front();
}
}  // namespace

ExitCode RunWrite(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--port", "--logger", "--channel", "--value", "--timeout"}, {}, 0);
    const std::string port = arguments.Require("--port"), wanted = arguments.Require("--channel");
    const std::string typed = WithPlainDigits(ToUtf8(arguments.Require("--value")));
    const DWORD timeout = arguments.Milliseconds("--timeout", 1, 600'000, MeasurementPlan().timeout);
    double value = 0;
    if (!RealFromText(typed, value)) throw Failure{kWrongUse, Say(Text::ValueNoNumber, {ToUtf8(arguments.Get("--value"))})};
    RefuseTwoReadings(typed, value);
    CPropertyDB description;
    LoadLoggerDescription(arguments.Require("--logger"), description);
    const std::unique_ptr<ILogger> logger = MakeLogger(app, description);
    const Session session(description, port);
    const size_t index = ChannelOf(session, wanted);
    const Session::Channel& channel = session.Channels()[index];

    const StopRequest stop(logger.get());
    try {
        logger->Connect(port.c_str(), timeout);
    } catch (CCommException* failure) {
        const LONG code = failure->m_nError;
        throw Failure{kCommunicationFailed, WhyNotOpened(port, code, TakeMessage(failure))};
    }
    Written written = {};
    try {
        written = logger->Write(static_cast<int>(index), WithPoint(typed, value).c_str());
    } catch (CCommException* failure) {
        // Refused before anything was sent, or by the line or the logger.
        const bool refused = failure->m_nError == CCommException::AccessDenied;
        const std::string why = TakeMessage(failure);
        if (refused) throw Failure{kWrongUse, Say(Text::NotSet, {ToUtf8(channel.name), why})};
        throw Failure{kCommunicationFailed, Say(Text::PortFailed, {ToUtf8(port), why})};
    }
    const auto shown = [&](const std::string& digits) {
        return WithDecimalSign(digits) + (channel.unit.empty() ? "" : " " + ToUtf8(channel.unit));
    };
    const std::string sent = shown(written.sent.GetString());
    Print(Say(Text::ValueSet, {ToUtf8(channel.name), sent, shown(written.held.GetString())}));
    if (written.sent != written.held) throw Failure{kCommunicationFailed, Say(Text::OtherValue, {ToUtf8(channel.name)})};
    if (!written.exact) throw Failure{kWrongUse, Say(Text::NotExact, {ToUtf8(channel.name), typed, sent})};
    return kDone;
}
