// CCommException: codes and their texts.
#include "comm/comm_exception.h"

#include <gtest/gtest.h>

#include <string>

namespace {
constexpr LANGID kEnglish = 0x0409, kSwedish = 0x041D;

// The language of texts, for the length of a test. Windows reads the one, Wine the other.
class Language {
public:
    explicit Language(LANGID language) : m_locale(::GetThreadLocale()) {
        ::SetThreadUILanguage(language);
        ::SetThreadLocale(language);
    }
    ~Language() {
        ::SetThreadLocale(m_locale);
        ::SetThreadUILanguage(0);
    }

private:
    LCID m_locale;
};

struct Caught {
    int code;
    std::string text;
};

Caught Catch(int code, const char* text) {
    try {
        OrvikThrowCommException(code, text);
    } catch (CException* e) {
        const auto* const failure = dynamic_cast<CCommException*>(e);
        const Caught caught =
            failure ? Caught{failure->m_nError, failure->m_strError.GetString()} : Caught{4711, "another class"};
        e->Delete();
        return caught;
    }
}

TEST(CommException, EveryCodeHasItsTextInBothLanguages) {
    // Windows-1252: \xE4 is a with two dots, \xE5 a with a ring, \xF6 o with two dots, \xC5 A with a ring.
    const struct {
        int code;
        const char *english, *swedish;
    } cases[] = {
        {0, "No error", "Inget fel"},
        {1, "Generic error", "Allm\xE4nt fel"},
        {2, "Receive overflow", "Receive overflow"},
        {3, "Bad protocol", "Felaktigt protokoll"},
        {4, "Illegal response", "Ogiltigt svar"},
        {5, "Hardware access denied", "\xC5tkomst till h\xE5rdvara nekad"},
        {6, "Device not open", "Enhet ej \xF6ppen"},
        {7, "Hardware error", "H\xE5rdvarufel"},
        {8, "Receive timeout", "Inget svar"},
        {9, "Session aborted", "Session avslutad"},
        {10, "Unknown error", "Ok\xE4nt fel"},
        {12, "Unknown error", "Ok\xE4nt fel"},
        {-1, "Unknown error", "Ok\xE4nt fel"},
        {2147483647, "Unknown error", "Ok\xE4nt fel"},
    };
    for (const LANGID language : {kEnglish, kSwedish}) {
        const Language spoken(language);
        for (const auto& c : cases) {
            const Caught caught = Catch(c.code, nullptr);
            EXPECT_EQ(c.code, caught.code) << "the code stays as it was given";
            EXPECT_EQ(language == kEnglish ? c.english : c.swedish, caught.text) << c.code;
        }
    }
}

TEST(CommException, ATextThatIsGivenIsTheText) {
    for (const char* text : {"no answer to function 3", "", "100 %s"}) {
        const Caught caught = Catch(CCommException::BadProtocol, text);
        EXPECT_EQ(3, caught.code);
        EXPECT_EQ(text, caught.text);
    }
}
}  // namespace
