// The clipboard as controls use it. House text, lines ending with "\r\n". Any thread.
#pragma once

#include <string>

#include "platform/posix/types.h"

namespace orvik::detail {

bool CopyText(HWND owner, const std::string& house);
std::string TextToPaste(HWND owner);  // empty where there is none
bool HasTextToPaste();
// What is marked by its user, for other programs' middle button, and what is marked somewhere. Nothing without a screen.
void OfferMarkedText(const std::string& house);
std::string MarkedText();

}  // namespace orvik::detail
