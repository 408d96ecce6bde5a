// What can be asked of the window: from its menu, by a shortcut, from a script by name. Pure tables; any thread.
#pragma once

#include <string_view>

#include "host/words/texts.h"
#include "platform/win32.h"

enum CommandId : UINT {
    kCommandNone = 0,
    kCommandOpen = 100,
    kCommandSave,
    kCommandPicture,
    kCommandStop,
    kCommandExit,
    kCommandUndo,
    kCommandRedo,
    kCommandAddTag,
    kCommandEditTag,
    kCommandRemoveTag,
    kCommandResetAxis,
    kCommandResetAll,
    kCommandZoomIn,
    kCommandZoomOut,
    kCommandSelect,
    kCommandZoomSelection,
    kCommandRemoveSelection,
    kCommandAbout,
    kCommandRange,
    kCommandTimeRange,
    kCommandProperties,
    kCommandDownload,
    kCommandSaveAs,
    kCommandExport,
    kCommandKeys,
    kCommandLatest,
    kCommandCopy,
    kCommandPrint,
    kCommandMissing,
    kCommandRecent = 180,    // and the files after it, the newest first
    kCommandChannels = 200,  // and the channels after it, in the session's order
    kCommandPorts = 400,     // and the ports after it, in the order in which they were listed
    kCommandEnd = 600
};

enum class MenuPlace { File, Edit, View, Help, None };

struct MenuCommand {
    CommandId id;
    MenuPlace place;
    bool afterLine;  // a separator stands before it
    Text text;
    const char* name;  // in scripts
    WORD key;          // 0: no shortcut
    bool control, shift;
    const char* keyText;
};

// Commands that open a dialog for somebody to answer.
constexpr bool AsksUser(CommandId id) {
    for (const CommandId one :
         {kCommandOpen, kCommandSave, kCommandSaveAs, kCommandExport, kCommandPicture, kCommandPrint, kCommandDownload,
          kCommandRange, kCommandTimeRange, kCommandProperties, kCommandAbout, kCommandKeys, kCommandMissing}) {
        if (id == one) return true;
    }
    return false;
}

inline constexpr MenuCommand kMenuCommands[] = {
    {kCommandOpen, MenuPlace::File, false, Text::MenuOpen, "open", 'O', true, false, "Ctrl+O"},
    {kCommandSave, MenuPlace::File, false, Text::MenuSave, "save", 'S', true, false, "Ctrl+S"},
    {kCommandSaveAs, MenuPlace::File, false, Text::MenuSaveAs, "save-as", 'S', true, true, "Ctrl+Shift+S"},
    {kCommandExport, MenuPlace::File, true, Text::MenuExport, "export", 'E', true, false, "Ctrl+E"},
    {kCommandPicture, MenuPlace::File, false, Text::MenuPicture, "picture", 'P', true, true, "Ctrl+Shift+P"},
    {kCommandPrint, MenuPlace::File, true, Text::MenuPrint, "print", 'P', true, false, "Ctrl+P"},
    {kCommandDownload, MenuPlace::File, true, Text::MenuDownload, "download", 'D', true, false, "Ctrl+D"},
    {kCommandStop, MenuPlace::File, false, Text::MenuStop, "stop", 'B', true, false, "Ctrl+B"},
    {kCommandExit, MenuPlace::File, true, Text::MenuExit, "exit", 0, false, false, "Alt+F4"},
    {kCommandUndo, MenuPlace::Edit, false, Text::MenuUndo, "undo", 'Z', true, false, "Ctrl+Z"},
    {kCommandRedo, MenuPlace::Edit, false, Text::MenuRedo, "redo", 'Y', true, false, "Ctrl+Y"},
    {kCommandCopy, MenuPlace::Edit, true, Text::MenuCopy, "copy", 'C', true, false, "Ctrl+C"},
    {kCommandAddTag, MenuPlace::Edit, true, Text::MenuAddTag, "add-tag", VK_INSERT, false, false, "Ins"},
    {kCommandEditTag, MenuPlace::Edit, false, Text::MenuEditTag, "edit-tag", VK_F2, false, false, "F2"},
    {kCommandRemoveTag, MenuPlace::Edit, false, Text::MenuRemoveTag, "remove-tag", 0, false, false, "Del"},
    {kCommandZoomIn, MenuPlace::View, false, Text::MenuZoomIn, "zoom-in", 0, false, false, "+"},
    {kCommandZoomOut, MenuPlace::View, false, Text::MenuZoomOut, "zoom-out", 0, false, false, "-"},
    {kCommandResetAxis, MenuPlace::View, false, Text::MenuResetAxis, "reset-axis", 0, false, false, ""},
    {kCommandResetAll, MenuPlace::View, false, Text::MenuResetAll, "reset-all", '0', true, false, "Ctrl+0"},
    {kCommandLatest, MenuPlace::View, false, Text::MenuLatest, "latest", VK_END, false, false, "End"},
    {kCommandSelect, MenuPlace::View, true, Text::MenuSelect, "select", 'R', true, false, "Ctrl+R"},
    {kCommandZoomSelection, MenuPlace::View, false, Text::MenuZoomSelection, "zoom-selection", VK_RETURN, true, false,
     "Ctrl+Enter"},
    {kCommandRemoveSelection, MenuPlace::View, false, Text::MenuRemoveSelection, "remove-selection", 0, false, false, ""},
    {kCommandRange, MenuPlace::View, true, Text::MenuRange, "range", 'G', true, false, "Ctrl+G"},
    {kCommandTimeRange, MenuPlace::View, false, Text::MenuTimeRange, "time-range", 'T', true, false, "Ctrl+T"},
    {kCommandProperties, MenuPlace::View, false, Text::MenuProperties, "properties", 0, false, false, "Alt+Enter"},
    {kCommandMissing, MenuPlace::View, false, Text::MenuMissing, "missing", 'M', true, false, "Ctrl+M"},
    {kCommandKeys, MenuPlace::Help, false, Text::MenuKeys, "keys", VK_F1, false, false, "F1"},
    {kCommandAbout, MenuPlace::Help, true, Text::MenuAbout, "about", 0, false, false, ""},
};

// By what a script calls it; kCommandNone for nothing.
constexpr CommandId CommandNamed(std::string_view name) {
    for (const MenuCommand& command : kMenuCommands) {
        if (name == command.name) return command.id;
    }
    return kCommandNone;
}

constexpr CommandId CommandOfKey(WORD key, bool control, bool shift) {
    for (const MenuCommand& command : kMenuCommands) {
        if (command.key != 0 && command.key == key && command.control == control && command.shift == shift) return command.id;
    }
    return kCommandNone;
}
