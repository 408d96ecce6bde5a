// Names of stations, loggers and channels as one level of a topic, and as an id of discovery. Different names stay different: one
// in which a letter had to be replaced, or that was too long, ends in a mark made of the whole name. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>

namespace mqtt {

// UTF-8. + # / and control characters become _; "a/b" is "a_b~" and eight digits.
std::string Level(std::string_view name);
// ASCII letters, digits, - and what _ stands for.
std::string PlainId(std::string_view name);

}  // namespace mqtt
