// What users of the keyboard need of every dialog of the module and its host, in both languages.
#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace {

struct Control {
    const char* kind;
    int id;
    DWORD style;
    int x, y, width, height;
    const char* texts[2];
    bool Is(const char* wanted) const { return std::strcmp(kind, wanted) == 0; }
};
struct Dialog {
    int id, width, height;
    std::vector<Control> controls;
};

std::vector<Dialog> Dialogs() {
    std::vector<Dialog> dialogs;
#define ORVIK_DIALOG(id, x, y, width, height, style, english, swedish) dialogs.push_back({id, width, height, {}});
#define ORVIK_CONTROL(kind, id, style, x, y, width, height, english, swedish) \
    dialogs.back().controls.push_back({kind, id, static_cast<DWORD>(style), x, y, width, height, {english, swedish}});
#define ORVIK_DIALOG_END()
#include "res/dialogs.def"
#undef ORVIK_DIALOG
#undef ORVIK_CONTROL
#undef ORVIK_DIALOG_END
    return dialogs;
}

// The letter behind "&", 0 for none.
char Mnemonic(const char* text) {
    const char* mark = std::strchr(text, '&');
    return mark != nullptr ? static_cast<char>(std::tolower(static_cast<unsigned char>(mark[1]))) : '\0';
}

}  // namespace

TEST(DialogTemplates, CanBeUsedByKeysInBothLanguages) {
    const std::vector<Dialog> dialogs = Dialogs();
    ASSERT_GE(dialogs.size(), 2u);
    for (const Dialog& dialog : dialogs) {
        std::map<char, const char*> letters[2];
        std::set<int> ids;
        int defaults = 0;
        const Control* before = nullptr;
        for (const Control& control : dialog.controls) {
            const std::string name = std::to_string(dialog.id) + "/" + std::to_string(control.id);
            EXPECT_TRUE(ids.insert(control.id).second) << name << " is there twice";
            EXPECT_TRUE(control.x >= 0 && control.y >= 0 && control.x + control.width <= dialog.width &&
                        control.y + control.height <= dialog.height)
                << name << " is not inside";
            const bool button = control.Is("Button"), radio = button && (control.style & BS_TYPEMASK) == BS_AUTORADIOBUTTON;
            defaults += button && (control.style & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
            // Of a group of radio buttons one is enough.
            if (control.Is("Edit") || control.Is("ComboBox") || (button && !radio)) {
                EXPECT_TRUE((control.style & WS_TABSTOP) != 0) << name << " is not reached by Tab";
            }
            for (int language = 0; language < 2; ++language) {
                const char letter = Mnemonic(control.texts[language]);
                if (letter == '\0' || (control.style & (control.Is("Static") ? DWORD{SS_NOPREFIX} : DWORD{0})) != 0) continue;
                EXPECT_TRUE(letters[language].emplace(letter, control.texts[language]).second)
                    << name << ": " << control.texts[language] << " and " << letters[language][letter];
                EXPECT_NE(Mnemonic(control.texts[1 - language]), '\0') << name << " has one in the other language too";
            }
            // A field's letter is that of the text before it.
            if (control.Is("Edit") && before != nullptr && before->Is("Static")) {
                EXPECT_NE(Mnemonic(before->texts[0]), '\0') << name;
            }
            before = &control;
        }
        EXPECT_EQ(defaults, 1) << dialog.id << " has one button for Enter";
    }
}
