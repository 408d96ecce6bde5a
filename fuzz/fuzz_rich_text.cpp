// Rich text to plain text: it ends, stays within twice its input, and leaves one form of line ends.
#include <string>

#include "fuzz/fuzz_support.h"
#include "platform/rich_text.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // The bytes as they are, and made rich, so that every input reaches the reader of rich text.
    const std::string given(reinterpret_cast<const char*>(data), size);
    const orvik::RichTextReader reader(nullptr);
    for (const std::string& text : {given, "{\\rtf1 " + given}) {
        const std::string plain = reader.ToPlain(text.c_str());
        FUZZ_REQUIRE(plain.size() <= 2 * text.size());
        FUZZ_REQUIRE(plain.find('\0') == plain.npos && plain.find('\v') == plain.npos);
        for (size_t at = 0; at < plain.size(); ++at) {
            if (plain[at] == '\r') FUZZ_REQUIRE(at + 1 < plain.size() && plain[at + 1] == '\n');
            if (plain[at] == '\n') FUZZ_REQUIRE(at > 0 && plain[at - 1] == '\r');
        }
    }
    return 0;
}
