// What users of the keyboard need of the module's dialogs, and the room for their texts, in both languages.
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "ui/progress_dialog.h"
#include "ui/prop_list_dialog.h"

namespace {
class DialogTexts : public DialogTest {};
}  // namespace

TEST_F(DialogTexts, CanBeUsedByKeysAndStandWholeInBothLanguages) {
    for (const WORD language : {WORD{LANG_ENGLISH}, WORD{LANG_SWEDISH}}) {
        const TextLanguage texts(language);
        CProgressDialog progress(&owner);
        ASSERT_TRUE(progress.Create(CProgressDlgParams(), &owner));
        ExpectUsable(progress, "progress");
        CPropListDialog properties(&owner);
        ASSERT_TRUE(properties.Create(IDD_ORVIK_PROPERTIES, &owner));
        properties.ShowWindow(SW_SHOW);
        ExpectUsable(properties, "properties");
    }
}
