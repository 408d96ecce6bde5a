// Data between the forms of this clipboard and those that other programs take. Pure functions; an empty result where there is
// nothing to be made of what came. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace orvik::detail {

inline constexpr size_t kMostCopied = size_t{64} * 1024 * 1024;

// UTF-16 as bytes, up to its first 0; half a surrogate pair becomes U+FFFD, and lines come to end with "\n".
std::string Utf8OfCopied(std::string_view unicode);
// With a final 0; lines come to end with "\r\n".
std::string CopiedOfUtf8(std::string_view utf8);
std::string HouseOfCopied(std::string_view unicode);  // both with a final 0
std::string CopiedOfHouse(std::string_view house);

std::string PngOfDib(std::string_view dib);
std::string DibOfPng(std::string_view png);

// The page in "HTML Format", and a page with such a heading. What came as UTF-16 is made UTF-8.
std::string HtmlOfCopied(std::string_view copied);
std::string CopiedOfHtml(std::string_view html);

}  // namespace orvik::detail
