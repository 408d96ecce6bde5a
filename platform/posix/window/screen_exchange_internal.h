// The part of the seam between windows and a screen (screen_internal.h) that is about the desktop's clipboard.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace orvik::detail {

// What was copied, in the forms that programs know; an empty one is not there. Text has "\n" at its lines' ends.
struct CopiedData {
    std::string text;  // UTF-8
    std::string html;  // UTF-8
    std::string png;   // a picture file
};
enum class CopiedForm { Text = 1, Html = 2, Picture = 4 };
enum class CopyPlace {
    Clipboard,
    Selection  // what is marked at this moment, for a press of the middle button
};

// From any thread; none of these waits. Functions are called on the screen's thread, an answer in any case and once. Other
// programs decide how long one takes, and how much comes.
class ScreenExchange {
public:
    // Null: nothing any more. `lost` when another program, or another offer, has taken the place.
    virtual void Offer(CopyPlace place, std::shared_ptr<const CopiedData> data, std::function<void()> lost) = 0;
    virtual void AskForms(CopyPlace place, std::function<void(unsigned forms)> answer) = 0;  // CopiedForm's bits
    // As it came, in UTF-8 or as a picture file; empty where there is none.
    virtual void Ask(CopyPlace place, CopiedForm form, std::function<void(std::string)> answer) = 0;

protected:
    ~ScreenExchange() = default;
};

ScreenExchange* TheExchange();  // null without a screen, or for one that has none

}  // namespace orvik::detail
