#include "host/gui/properties_dialog.h"

#include <algorithm>

#include "afx/message_box.h"
#include "host/gui/value_list.h"
#include "host/words/texts.h"
#include "time/number_text.h"

namespace {
// With more channels the list scrolls, so that the dialog stays on the screen.
constexpr size_t kMostChannels = 6;
constexpr size_t kLongestName = 80;
constexpr DWORD_PTR kDataKinds = 16;  // a property's data: its kind, and which channel's it is

CBCGPProp* NewProperty(Text name, const CBCGPPropValue& value, Text help, DWORD_PTR data) {
    return new CBCGPProp(Say(name).c_str(), value, Say(help).c_str(), data);
}

bool IsHidden(const ViewState& state, const std::string& key) {
    return std::find(state.hidden.begin(), state.hidden.end(), key) != state.hidden.end();
}

// "@@@", "###", "##.##" with a decimal point or comma, ".##"; nothing for the ordinary picture.
bool IsValuePicture(const CString& text) {
    const std::string_view picture = text.GetView();
    if (picture.find_first_not_of('@') == std::string_view::npos) return true;
    const size_t point = std::min(picture.find_first_not_of('#'), picture.size());
    if (point == picture.size()) return true;
    return (picture[point] == '.' || picture[point] == ',') &&
           picture.find_first_not_of('#', point + 1) == std::string_view::npos;
}
}  // namespace

PropertiesDialog::PropertiesDialog(CWnd* parent, ViewDocument& document, size_t place, std::optional<size_t> channel, Owner owner)
    : CPropListDialog(parent), m_document(document), m_place(place), m_first(channel), m_owner(std::move(owner)) {}

BOOL PropertiesDialog::OnInitDialog() {
    CPropListDialog::OnInitDialog();
    const std::string& unit = m_document.State().axes[m_place].unit;
    SetWindowText(Say(Text::PropertiesTitle, {ToUtf8(unit.empty() ? Say(Text::NoUnit) : unit)}).c_str());
    AddAxis();
    const auto& channels = m_document.GetSession()->Channels();
    for (size_t i = 0; i < channels.size(); ++i) {
        if (channels[i].unit == unit) AddChannel(i);
    }
    if (m_channels.size() <= kMostChannels) AdjustWindowSize();
    CenterWindow();
    CBCGPProp* selected = m_from;
    for (const Channel& channel : m_channels) {
        if (m_first == channel.number) selected = channel.name;
    }
    GetPropList().SetCurSel(selected);
    GetPropList().EnsureVisible(selected);
    GetPropList().SetFocus();
    return FALSE;
}

void PropertiesDialog::AddAxis() {
    const ViewState::Axis& axis = m_document.State().axes[m_place];
    const ViewRange shown = m_owner.shown();
    auto* const group = new CBCGPProp(Say(Text::PropAxis).c_str());
    auto* const unit = NewProperty(Text::PropUnit, axis.unit.c_str(), Text::PropUnitHelp, 0);
    unit->Enable(FALSE);
    m_follows = NewProperty(Text::PropFollows, !axis.range, Text::PropFollowsHelp, Follows);
    m_from = NewProperty(Text::PropFrom, shown.origin, Text::PropFromHelp, From);
    m_to = NewProperty(Text::PropTo, shown.extent, Text::PropToHelp, To);
    m_picture = NewProperty(Text::PropPicture, axis.picture.c_str(), Text::PropPictureHelp, Picture);
    for (CBCGPProp* const property : {unit, m_follows, m_from, m_to, m_picture}) group->AddSubItem(property);
    GetPropList().AddProperty(group);
}

void PropertiesDialog::AddChannel(size_t number) {
    const ViewState& state = m_document.State();
    const ViewState::Channel& channel = state.channels[number];
    const DWORD_PTR base = kDataKinds * m_channels.size();
    auto* const group = new CBCGPProp(channel.name.c_str());
    auto* const name = NewProperty(Text::PropName, channel.name.c_str(), Text::PropNameHelp, base + Name);
    auto* const shown = NewProperty(Text::PropShown, !IsHidden(state, channel.key), Text::PropShownHelp, base + Shown);
    auto* const colour =
        new CBCGPColorProp(Say(Text::PropColour).c_str(), channel.colour, Say(Text::PropColourHelp).c_str(), base + Colour);
    for (CBCGPProp* const property : {name, shown, static_cast<CBCGPProp*>(colour)}) group->AddSubItem(property);
    GetPropList().AddProperty(group);
    m_channels.push_back({number, name, shown, colour});
}

void PropertiesDialog::OnPropertyChanged(DWORD_PTR data) {
    const Kind kind = static_cast<Kind>(data % kDataKinds);
    kind < Name ? ChangeAxis(kind) : ChangeChannel(kind, m_channels[data / kDataKinds]);
    Show();
}

void PropertiesDialog::ChangeAxis(Kind kind) {
    ViewState next = m_document.State();
    ViewState::Axis& axis = next.axes[m_place];
    if (kind == Picture) {
        const CString text = m_picture->GetValue().Text();
        if (!IsValuePicture(text) || text.GetLength() > static_cast<int>(ViewState::kLongestPicture))
            return Refuse(m_picture, Text::PictureWrong);
        axis.picture = text.GetString();
        return m_owner.step(Text::StepPicture, next);
    }
    // An end that is given is kept, whatever the data.
    const ViewRange shown = m_owner.shown();
    if (kind == Follows) {
        axis.range = m_follows->GetValue().Boolean() ? std::nullopt : std::optional(shown);
    } else {
        const ViewRange wanted{kind == From ? m_from->GetValue().Real() : shown.origin,
                               kind == To ? m_to->GetValue().Real() : shown.extent};
        if (!IsShowable(wanted)) return Refuse(kind == From ? m_from : m_to, Text::RangeEmpty);
        axis.range = wanted;
    }
    m_owner.step(Text::StepRange, next);
}

void PropertiesDialog::ChangeChannel(Kind kind, const Channel& channel) {
    const ViewState& state = m_document.State();
    ViewState next = state;
    ViewState::Channel& one = next.channels[channel.number];
    if (kind == Name) {
        CString text = channel.name->GetValue().Text();
        text.Trim();
        if (text.IsEmpty() || text.GetLength() > static_cast<int>(kLongestName)) return Refuse(channel.name, Text::NameWrong);
        one.name = text.GetString();
        m_owner.step(Text::StepName, next);
    } else if (kind == Colour) {
        one.colour = static_cast<COLORREF>(channel.colour->GetValue().Integer());
        m_owner.step(Text::StepColour, next);
    } else if (channel.shown->GetValue().Boolean() == IsHidden(state, one.key)) {
        next = ValueList::Toggled(state, *m_document.GetSession(), channel.number);
        if (next == state) return Refuse(channel.shown, Text::LastChannel);
        m_owner.step(Text::StepChannel, next);
    }
}

void PropertiesDialog::Refuse(CBCGPProp* property, Text text) {
    AfxMessageBox(Say(text).c_str(), MB_OK | MB_ICONEXCLAMATION);
    GetPropList().SetCurSel(property);
    GetPropList().SetFocus();
}

void PropertiesDialog::Show() {
    const ViewState& state = m_document.State();
    const ViewState::Axis& axis = state.axes[m_place];
    const auto set = [](CBCGPProp* property, const CBCGPPropValue& value) {
        if (!(property->GetValue() == value)) property->SetValue(value);
    };
    const ViewRange shown = m_owner.shown();
    set(m_follows, !axis.range);
    set(m_from, shown.origin);
    set(m_to, shown.extent);
    set(m_picture, axis.picture.c_str());
    for (const Channel& channel : m_channels) {
        const ViewState::Channel& one = state.channels[channel.number];
        channel.name->GetParent()->SetName(one.name.c_str());
        set(channel.name, one.name.c_str());
        set(channel.shown, !IsHidden(state, one.key));
        set(channel.colour, static_cast<__int64>(one.colour));
    }
}
