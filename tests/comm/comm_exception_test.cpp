// CCommException: codes and their texts.
#include <gtest/gtest.h>

#include "platform/house_text_internal.h"
#include "tests/support/comm_failure.h"
#include "tests/support/regional_settings.h"

namespace {
CommFailure Thrown(int code, const char* text) {
    return FailureOf([=] { OrvikThrowCommException(code, text); });
}

TEST(CommException, EveryCodeHasItsTextInBothLanguages) {
    // Windows-1252: \xE4 is a with two dots, \xE5 a with a ring, \xF6 o with two dots, \xC5 A with a ring.
    const struct {
        int code;
        const char *english, *swedish;
    } cases[] = {{0, "No error", "Inget fel"},
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
                 {2147483647, "Unknown error", "Ok\xE4nt fel"}};
    for (const WORD language : {WORD{LANG_ENGLISH}, WORD{LANG_SWEDISH}}) {
        const TextLanguage spoken(language);
        for (const auto& [code, english, swedish] : cases)
            EXPECT_EQ((CommFailure{code, orvik::detail::HouseFrom1252(language == LANG_ENGLISH ? english : swedish)}),
                      Thrown(code, nullptr))
                << code;
    }
}

TEST(CommException, ATextThatIsGivenIsTheText) {
    for (const char* text : {"no answer to function 3", "", "100 %s"}) EXPECT_EQ((CommFailure{3, text}), Thrown(3, text));
}
}  // namespace
