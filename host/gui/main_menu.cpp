// The window's menus: what they say, and when.
#include <algorithm>

#include "host/gui/listed_ports.h"
#include "host/gui/main_window.h"
#include "host/words/console.h"

std::string MainWindow::ItemText(const MenuCommand& command) const {
    const ViewHistory& history = const_cast<MainWindow*>(this)->m_document.History();
    std::string text = Say(command.text);
    if (command.id == kCommandUndo && history.CanUndo()) text = Say(Text::MenuUndoStep, {Say(history.UndoName())});
    if (command.id == kCommandRedo && history.CanRedo()) text = Say(Text::MenuRedoStep, {Say(history.RedoName())});
    std::string keys = command.keyText;
    if (const size_t shift = keys.find("Shift"); shift != std::string::npos) keys.replace(shift, 5, Say(Text::KeyShift));
    if (!keys.empty()) text += "\t" + keys;
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
            if (command.id == kCommandSave) {
                m_recentMenu = ::CreatePopupMenu();
                ::AppendMenuA(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(m_recentMenu), Say(Text::MenuRecent).c_str());
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
    FillRecent(m_recentMenu);
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
    for (const ListedPort& port : ListPorts()) {
        if (m_ports.size() == size_t{kCommandEnd - kCommandPorts}) break;
        const std::string text = port.name + (port.description.empty() ? "" : "  " + port.description);
        ::AppendMenuA(menu, MF_STRING, kCommandPorts + static_cast<UINT>(m_ports.size()), text.c_str());
        m_ports.push_back(port.name);
    }
    if (m_ports.empty()) ::AppendMenuA(menu, MF_STRING | MF_GRAYED, 0, Say(Text::NoPorts).c_str());
}

// Numbered for the keys; a long path keeps its end, which tells files apart.
void MainWindow::FillRecent(HMENU menu) {
    constexpr size_t kLongest = 60;
    EmptyMenu(menu);
    m_recentShown = m_recent.All();
    for (size_t i = 0; i < m_recentShown.size(); ++i) {
        std::string path = m_recentShown[i], text = "&" + std::to_string(i + 1) + "  ";
        if (path.size() > kLongest) {
            const size_t cut = path.find_first_of("/\\", path.size() - kLongest);
            if (cut != std::string::npos) path = "..." + path.substr(cut);
        }
        for (const char letter : path) text.append(letter == '&' ? 2 : 1, letter);
        const UINT id = kCommandRecent + static_cast<UINT>(i);
        ::AppendMenuA(menu, MF_STRING | (CanCommand(id) ? MF_ENABLED : MF_GRAYED), id, text.c_str());
    }
    if (m_recentShown.empty()) ::AppendMenuA(menu, MF_STRING | MF_GRAYED, 0, Say(Text::NoRecent).c_str());
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
    if (menu == m_recentMenu) FillRecent(menu);
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
