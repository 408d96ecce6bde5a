// The escapes of the XML dialect. Text escapes "&", "<", ">" and seven letters by number; attributes escape "&" and the two
// quotes. No other byte is escaped: in a Windows-1252 process bytes above 127 stand as they are, although the declaration names
// UTF-8. That is the format. In a UTF-8 process what is written is UTF-8, whatever the text holds, and any reference by number is
// read.
// Pure functions; any thread. Internal.
#pragma once

#include "xml/short_text.h"
#include "xml/xml_text.h"

#include <cstddef>
#include <string_view>

namespace orvik::detail {
// Append `text` escaped, up to its first byte 0, as a C text ends there.
void AppendEscapedAttribute(ShortText& out, std::string_view text);
void AppendEscapedText(ShortText& out, std::string_view text, const XmlEntities& entities);

// Undo the escapes in place; return the new length, never more than the old one.
// In attributes "&amp;" is replaced first, so that "&amp;quot;" reads as a quote; in text last, so that "&amp;lt;" reads as
// "&lt;".
size_t UnescapeAttribute(char* text, size_t length);
size_t UnescapeText(char* text, size_t length, const XmlEntities& entities);
}  // namespace orvik::detail
