// The templates of the module's own dialogs, as resources; dialogs/dialog_templates.cpp writes them.
#pragma once

#include <vector>

#include "platform/posix/types.h"

namespace orvik::detail {

// The module's own templates, in the extended kind's bytes.
struct EmbeddedDialog {
    WORD id;
    std::vector<unsigned char> english, swedish;
};
std::vector<EmbeddedDialog> EmbeddedDialogs();

}  // namespace orvik::detail
