// A foreign XML parser must accept what is written, as long as no byte above 127 is unescaped, and find the same values in it.
#include "tests/propdb/property_db_fixture.h"

#include <expat.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <random>

namespace {
struct Found {
    std::vector<std::string> path;
    std::string name, type, size, text;
    std::map<std::string, std::string> values;
};

void Open(void* user, const char* tag, const char** attributes) {
    auto& found = *static_cast<Found*>(user);
    std::map<std::string, std::string> named;
    for (; *attributes; attributes += 2) named[attributes[0]] = attributes[1];
    if (!std::strcmp(tag, "PATH")) found.path.push_back(named["name"]);
    found.name = named["name"];
    found.type = named["type"];
    found.size = named["size"];
    found.text.clear();
}
void Close(void* user, const char* tag) {
    auto& found = *static_cast<Found*>(user);
    if (!std::strcmp(tag, "PATH")) found.path.pop_back();
    if (std::strcmp(tag, "PROPERTY")) return;
    std::string key;
    for (const std::string& part : found.path) key += part + '.';
    found.values[key + found.name] = found.type + ' ' + found.size + ' ' + found.text;
}
void Text(void* user, const char* text, int length) { static_cast<Found*>(user)->text.append(text, static_cast<size_t>(length)); }

// The escaped letters as the parser gives them.
std::string Utf8(const std::string& text) {
    std::string result;
    for (const char ch : text) {
        const auto byte = static_cast<unsigned char>(ch);
        if (byte < 128) {
            result += ch;
        } else {
            result += static_cast<char>(0xC0 | byte >> 6);
            result += static_cast<char>(0x80 | (byte & 63));
        }
    }
    return result;
}
}  // namespace

TEST(PropertyDbExpat, FindsTheSameValues) {
    std::mt19937 random(3);
    const auto below = [&random](unsigned limit) { return static_cast<unsigned>(random() % limit); };
    // Neither ends of texts in white space nor control characters: the one are trimmed by readers of the dialect, the others are
    // no XML.
    const std::string letters = "abcXYZ019 .,:!?#%&<>'\"()[]{}=+-*/\\|_~^@$;\xE5\xE4\xF6\xC5\xC4\xD6\xB0";
    const std::string nameLetters = letters.substr(0, letters.size() - 7 - 1);
    for (int round = 0; round < 50; ++round) {
        CPropertyDB db;
        std::map<std::string, std::string> expected;
        const auto randomText = [&](const std::string& from) {
            std::string text;
            for (unsigned i = below(30); i > 0; --i) text += from[below(static_cast<unsigned>(from.size()))];
            return '[' + text + ']';
        };
        for (int i = 0; i < 100; ++i) {
            std::string name = randomText(nameLetters);
            for (char& ch : name)
                if (ch == '.' || ch == '\'' || ch == '"' || ch == '<')
                    ch = '_';  // separators; and "<" stands unescaped in attributes
            const std::string node = "n" + std::to_string(below(5));
            const std::string key = node + '.' + name;
            if (!db.IsUniqueKey(key.c_str())) continue;
            switch (below(5)) {
                case 0: {
                    const std::string text = randomText(letters);
                    db.SetValue(key.c_str(), text.c_str());
                    expected[key] = "str 1 " + Utf8(text);
                    break;
                }
                case 1: {
                    const auto value = static_cast<unsigned>(random());
                    db.SetValue(key.c_str(), value);
                    expected[key] = "u32 1 " + std::to_string(value);
                    break;
                }
                case 2: {
                    const auto value = static_cast<__int64>(random()) * (below(2) ? -1000003 : 1000003);
                    db.SetValue(key.c_str(), value);
                    expected[key] = "i64 1 " + std::to_string(value);
                    break;
                }
                case 3: {
                    const double value = static_cast<double>(random()) / 1e7 - 200;
                    db.SetValue(key.c_str(), value);
                    char text[32];
                    std::snprintf(text, sizeof text, "r64 1 %G", value);
                    expected[key] = text;
                    break;
                }
                default: {
                    CWordArray words;
                    std::string text = "u16 3 ";
                    for (int n = 0; n < 3; ++n) {
                        words.Add(static_cast<WORD>(random()));
                        text += (n ? ";" : "") + std::to_string(words[n]);
                    }
                    db.SetValue(key.c_str(), words);
                    expected[key] = text;
                }
            }
        }
        CMemFile file;
        ASSERT_TRUE(db.StoreToFile(&file, 1, 0));
        Found found;
        const XML_Parser parser = XML_ParserCreate(nullptr);
        XML_SetUserData(parser, &found);
        XML_SetElementHandler(parser, Open, Close);
        XML_SetCharacterDataHandler(parser, Text);
        const auto* bytes = reinterpret_cast<const char*>(file.GetBufferPtr());
        EXPECT_EQ(XML_Parse(parser, bytes, static_cast<int>(file.GetLength()), 1), XML_STATUS_OK)
            << XML_ErrorString(XML_GetErrorCode(parser));
        XML_ParserFree(parser);
        EXPECT_EQ(found.values, expected);
    }
}
