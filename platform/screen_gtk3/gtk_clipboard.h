// The desktop's clipboard, and what is marked.
// Requests come from any thread and are done on the module's.
#pragma once

#include "platform/posix/window/screen_exchange_internal.h"

class GtkClipboards final : public orvik::detail::ScreenExchange {
public:
    void Offer(orvik::detail::CopyPlace place, std::shared_ptr<const orvik::detail::CopiedData> data,
               std::function<void()> lost) override;
    void AskForms(orvik::detail::CopyPlace place, std::function<void(unsigned forms)> answer) override;
    void Ask(orvik::detail::CopyPlace place, orvik::detail::CopiedForm form, std::function<void(std::string)> answer) override;
    // At the module's end: what was copied stays, on desktops that keep it for programs that go.
    void Store();
};

// Has the module's thread do this, after what is under way there.
void OnScreenThread(std::function<void()> work);
