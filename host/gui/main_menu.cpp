// The window's menus: what they say, and when.
#include <algorithm>

#include "comm/serial_device.h"
#include "host/gui/main_window.h"
#include "host/words/console.h"

std::string MainWindow::ItemText(const MenuCommand& command) const {
    const ViewHistory& history = const_cast<MainWindow*>(this)->m_document.History();
    std::string text = Say(command.text);
    if (command.id == kCommandUndo && history.CanUndo()) text = Say(Text::MenuUndoStep, {Say(history.UndoName())});
    if (command.id == kCommandRedo && history.CanRedo()) text = Say(Text::MenuRedoStep, {Say(history.RedoName())});
    if (command.keyText[0] != 0) text += std::string("\t") + command.keyText;
    return text;
}

void MainWindow::MakeMenu() {
    constexpr std::pair<MenuPlace, Text> kMenus[] = {{MenuPlace::File, Text::MenuFile},
                                                     {MenuPlace::Edit, Text::MenuEdit},
                                                     {MenuPlace::View, Text::MenuView},
                                                     {MenuPlace::Help, Text::MenuHelp}};
    const HMENU bar = ::CreateMenu();
    for (const auto& [place, text] : kMenus) {
        const HMENU menu = ::CreatePopupMenu();
        for (const MenuCommand& command : kMenuCommands) {
            if (command.place != place) continue;
            if (command.id == kCommandStop) {
                m_portMenu = ::CreatePopupMenu();
                ::AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(m_portMenu), Say(Text::MenuConnect).c_str());
            }
            if (command.afterLine) {
                ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
            }
            ::AppendMenuA(menu, MF_STRING, command.id, ItemText(command).c_str());
        }
        if (place == MenuPlace::View) {
            m_channelMenu = ::CreatePopupMenu();
            ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
            ::AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(m_channelMenu), Say(Text::MenuChannels).c_str());
        }
        ::AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu), Say(text).c_str());
    }
    ::SetMenu(m_hWnd, bar);
    FillPorts(m_portMenu);
    FillChannels(m_channelMenu);
}

void MainWindow::UpdateMenu() {
    const HMENU bar = m_hWnd != nullptr ? ::GetMenu(m_hWnd) : nullptr;
    if (bar == nullptr) return;
    for (const MenuCommand& command : kMenuCommands) {
        const UINT state = CanCommand(command.id) ? MF_ENABLED : MF_GRAYED;
        ::ModifyMenuA(bar, command.id, MF_BYCOMMAND | MF_STRING | state, command.id, ItemText(command).c_str());
    }
}

std::string MainWindow::MenuText(UINT command) const {
    char text[256] = {};
    ::GetMenuStringA(::GetMenu(m_hWnd), command, text, sizeof text, MF_BYCOMMAND);
    return text;
}

namespace {
void EmptyMenu(HMENU menu) {
    while (::GetMenuItemCount(menu) > 0) ::DeleteMenu(menu, 0, MF_BYPOSITION);
}
}  // namespace

void MainWindow::FillPorts(HMENU menu) {
    EmptyMenu(menu);
    m_ports.clear();
    CArray<CSerialDevice, const CSerialDevice&> devices;
    CSerialDevice::EnumSerialDevices(devices);
    for (INT_PTR i = 0; i < devices.GetSize() && i < INT_PTR{kCommandEnd - kCommandPorts}; ++i) {
        CSerialDevice device = devices.GetAt(i);
        m_ports.emplace_back(static_cast<const char*>(device.GetPortName()));
        const std::string description = static_cast<const char*>(device.GetDescription());
        const std::string text = m_ports.back() + (description.empty() ? "" : "  " + description);
        ::AppendMenuA(menu, MF_STRING | (IsDownloading() ? MF_GRAYED : MF_ENABLED), kCommandPorts + static_cast<UINT>(i),
                      text.c_str());
    }
    if (m_ports.empty()) ::AppendMenuA(menu, MF_STRING | MF_GRAYED, 0, Say(Text::NoPorts).c_str());
}

void MainWindow::FillChannels(HMENU menu) {
    EmptyMenu(menu);
    if (!m_document.HasSession()) {
        ::AppendMenuA(menu, MF_STRING | MF_GRAYED, 0, Say(Text::NothingOpen).c_str());
        return;
    }
    const auto& channels = m_document.GetSession()->Channels();
    const auto& hidden = m_document.State().hidden;
    for (size_t i = 0; i < channels.size() && i < kCommandPorts - kCommandChannels; ++i) {
        const bool shown = std::find(hidden.begin(), hidden.end(), channels[i].key) == hidden.end();
        ::AppendMenuA(menu, MF_STRING | (shown ? MF_CHECKED : MF_UNCHECKED), kCommandChannels + static_cast<UINT>(i),
                      channels[i].name.c_str());
    }
}

LRESULT MainWindow::OnMenuOpens(WPARAM wParam, LPARAM) {
    const HMENU menu = reinterpret_cast<HMENU>(wParam);
    if (menu == m_portMenu) FillPorts(menu);
    if (menu == m_channelMenu) FillChannels(menu);
    UpdateMenu();
    return 0;
}

void MainWindow::ShowContextMenu(POINT screen) {
    if (m_manner == Manner::Quiet) return;  // nobody would choose, and the menu would stay for ever
    const HMENU menu = ::CreatePopupMenu();
    constexpr CommandId kFirst[] = {kCommandEditTag, kCommandRemoveTag, kCommandResetAxis, kCommandZoomSelection,
                                    kCommandRemoveSelection};
    constexpr CommandId kAlways[] = {kCommandAddTag,    kCommandSelect,     kCommandResetAll, kCommandRange,
                                     kCommandTimeRange, kCommandProperties, kCommandUndo,     kCommandRedo};
    const auto add = [&](CommandId id) {
        for (const MenuCommand& command : kMenuCommands) {
            if (command.id == id)
                ::AppendMenuA(menu, MF_STRING | (CanCommand(id) ? MF_ENABLED : MF_GRAYED), id, ItemText(command).c_str());
        }
    };
    for (const CommandId id : kFirst) {
        if (CanCommand(id)) add(id);
    }
    if (::GetMenuItemCount(menu) > 0) ::AppendMenuA(menu, MF_SEPARATOR, 0, nullptr);
    for (const CommandId id : kAlways) add(id);
    ::TrackPopupMenu(menu, TPM_LEFTALIGN | TPM_RIGHTBUTTON, screen.x, screen.y, 0, m_hWnd, nullptr);
    ::DestroyMenu(menu);
}
