// The order of texts in a user's language. Any thread.
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/types.h"

namespace orvik::detail {
// The ICU name of the locale that orders texts for an id, the user's being LC_COLLATE's; empty for an id without a locale.
std::string OrderingLocale(LCID locale);
// < 0, 0, > 0 for two texts in UTF-8 in the order of a locale; letters that differ in their case alone may be equal.
int CompareInOrder(const std::string& localeName, std::string_view first, std::string_view second, bool ignoreCase);
}  // namespace orvik::detail
