// Descriptions of text loggers as a table can hold them, and their refusals.
#pragma once

#include "plugins/text/text_description.h"
#include "tests/support/comm_failure.h"
#include "tests/support/described.h"

inline text::Description Described(std::string_view text) {
    CPropertyDB db;
    Describe(db, text);
    return text::ReadDescription(db);
}
// The text of a refusal; empty when there is none.
template <class Work>
std::string RefusalOf(Work work) {
    return FailureOf(work).text;
}
