// The words of a command line: options with and without a value, and arguments in their order.
// UTF-8, or what a name of a file is made of instead.
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32.h"

class Arguments {
public:
    // Takes the words after the command; "--option=value" is the same as "--option value". An option not listed, a missing or
    // empty value, an option given twice, or more than `most` arguments is a Failure with the sentence for it. "--" ends the
    // options. Options with a value that are `repeated` may be given any number of times; All has their values.
    Arguments(const std::vector<std::string>& words, std::initializer_list<const char*> withValue,
              std::initializer_list<const char*> flags, size_t most, std::initializer_list<const char*> repeated = {});

    bool Has(const char* option) const { return m_options.count(option) != 0; }
    std::string Get(const char* option, const char* standard = "") const;
    std::string Require(const char* option) const;
    std::vector<std::string> All(const char* option) const;  // in their order; none when it is not given
    DWORD Number(const char* option, DWORD low, DWORD high, DWORD standard) const;
    // A span (see span_words.h) in whole milliseconds, or in microseconds.
    DWORD Milliseconds(const char* option, DWORD low, DWORD high, DWORD standard) const;
    __int64 Span(const char* option, __int64 low, __int64 high, __int64 standard) const;
    unsigned __int64 Bytes(const char* option, unsigned __int64 low, unsigned __int64 high, unsigned __int64 standard) const;

    size_t Count() const { return m_arguments.size(); }
    // The argument at `index`; when it is not there, a Failure that calls it `name`.
    const std::string& At(size_t index, const char* name) const;

private:
    std::map<std::string, std::vector<std::string>> m_options;
    std::vector<std::string> m_arguments;
};
