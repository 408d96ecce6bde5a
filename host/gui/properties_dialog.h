// The properties of an axis and of its channels, in the property list. Each change is done at once, as a step of its own; what
// cannot be is told once and put back. House text. User-interface thread; session, document and parent outlive it.
#pragma once

#include <functional>
#include <optional>

#include "host/gui/view_document.h"
#include "ui/prop_list_dialog.h"

class PropertiesDialog : public CPropListDialog {
public:
    // What the dialog asks of the window around it: a step, and what the axis shows now.
    struct Owner {
        std::function<void(Text, const ViewState&)> step;
        std::function<ViewRange()> shown;
    };

    // The axis at this place of the state; `channel` (of the session) is selected at first, if it is one of the axis's.
    PropertiesDialog(CWnd* parent, ViewDocument& document, size_t place, std::optional<size_t> channel, Owner owner);

protected:
    BOOL OnInitDialog() override;
    void OnPropertyChanged(DWORD_PTR data) override;

private:
    enum Kind { Follows = 1, From, To, Picture, Name, Shown, Colour };
    struct Channel {
        size_t number;
        CBCGPProp *name, *shown, *colour;
    };

    void AddAxis();
    void AddChannel(size_t number);
    void ChangeAxis(Kind kind);
    void ChangeChannel(Kind kind, const Channel& channel);
    // All values as they are, after a step or a refusal.
    void Show();
    void Refuse(CBCGPProp* property, Text text);

    ViewDocument& m_document;
    const size_t m_place;
    const std::optional<size_t> m_first;
    const Owner m_owner;
    CBCGPProp *m_follows = nullptr, *m_from = nullptr, *m_to = nullptr, *m_picture = nullptr;
    std::vector<Channel> m_channels;
};
