// A station's status as a page of metrics, in the text format 0.0.4 that Prometheus scrapes. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>

#include "record/sink.h"

namespace prometheus {

// Metrics in the order of docs/prometheus.md. Where the station does not `live` the page says so and nothing else: what it told
// last is no state any more. Values of a logger that gives none at present are left out, so that a graph ends where measuring did;
// the times of the last ones stay.
std::string MetricsText(const CSinkStatus& status, bool lives);

// Between the quotes of a label: backslash, quote and line feed are escaped.
std::string LabelText(std::string_view utf8);
// "+Inf", "-Inf", "NaN", else as many digits as bring back the same bits.
std::string NumberText(double value);

}  // namespace prometheus
