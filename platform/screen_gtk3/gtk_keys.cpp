#include "platform/screen_gtk3/gtk_keys.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <iterator>

namespace {
struct Pair {
    guint value;
    UINT key;
};

constexpr Pair kNamed[] = {
    {GDK_KEY_BackSpace, VK_BACK},
    {GDK_KEY_Tab, VK_TAB},
    {GDK_KEY_ISO_Left_Tab, VK_TAB},
    {GDK_KEY_KP_Tab, VK_TAB},
    {GDK_KEY_Clear, VK_CLEAR},
    {GDK_KEY_Return, VK_RETURN},
    {GDK_KEY_KP_Enter, VK_RETURN},
    {GDK_KEY_ISO_Enter, VK_RETURN},
    {GDK_KEY_Shift_L, VK_SHIFT},
    {GDK_KEY_Shift_R, VK_SHIFT},
    {GDK_KEY_Control_L, VK_CONTROL},
    {GDK_KEY_Control_R, VK_CONTROL},
    {GDK_KEY_Alt_L, VK_MENU},
    {GDK_KEY_Alt_R, VK_MENU},
    {GDK_KEY_Meta_L, VK_MENU},
    {GDK_KEY_Pause, VK_PAUSE},
    {GDK_KEY_Caps_Lock, VK_CAPITAL},
    {GDK_KEY_Escape, VK_ESCAPE},
    {GDK_KEY_space, VK_SPACE},
    {GDK_KEY_KP_Space, VK_SPACE},
    {GDK_KEY_Page_Up, VK_PRIOR},
    {GDK_KEY_KP_Page_Up, VK_PRIOR},
    {GDK_KEY_Page_Down, VK_NEXT},
    {GDK_KEY_KP_Page_Down, VK_NEXT},
    {GDK_KEY_End, VK_END},
    {GDK_KEY_KP_End, VK_END},
    {GDK_KEY_Home, VK_HOME},
    {GDK_KEY_KP_Home, VK_HOME},
    {GDK_KEY_Left, VK_LEFT},
    {GDK_KEY_KP_Left, VK_LEFT},
    {GDK_KEY_Up, VK_UP},
    {GDK_KEY_KP_Up, VK_UP},
    {GDK_KEY_Right, VK_RIGHT},
    {GDK_KEY_KP_Right, VK_RIGHT},
    {GDK_KEY_Down, VK_DOWN},
    {GDK_KEY_KP_Down, VK_DOWN},
    {GDK_KEY_Print, VK_SNAPSHOT},
    {GDK_KEY_Insert, VK_INSERT},
    {GDK_KEY_KP_Insert, VK_INSERT},
    {GDK_KEY_Delete, VK_DELETE},
    {GDK_KEY_KP_Delete, VK_DELETE},
    {GDK_KEY_Help, VK_HELP},
    {GDK_KEY_Super_L, VK_LWIN},
    {GDK_KEY_Super_R, VK_RWIN},
    {GDK_KEY_Menu, VK_APPS},
    {GDK_KEY_KP_Multiply, VK_MULTIPLY},
    {GDK_KEY_KP_Add, VK_ADD},
    {GDK_KEY_KP_Subtract, VK_SUBTRACT},
    {GDK_KEY_KP_Decimal, VK_DECIMAL},
    {GDK_KEY_KP_Separator, VK_DECIMAL},
    {GDK_KEY_KP_Divide, VK_DIVIDE},
    {GDK_KEY_Num_Lock, VK_NUMLOCK},
    {GDK_KEY_Scroll_Lock, VK_SCROLL},
};

// Both signs of each key of the United States keyboard that is neither letter nor digit.
constexpr Pair kSigns[] = {
    {';', VK_OEM_1},     {':', VK_OEM_1},     {'=', VK_OEM_PLUS},  {'+', VK_OEM_PLUS},   {',', VK_OEM_COMMA},
    {'<', VK_OEM_COMMA}, {'-', VK_OEM_MINUS}, {'_', VK_OEM_MINUS}, {'.', VK_OEM_PERIOD}, {'>', VK_OEM_PERIOD},
    {'/', VK_OEM_2},     {'?', VK_OEM_2},     {'`', VK_OEM_3},     {'~', VK_OEM_3},      {'[', VK_OEM_4},
    {'{', VK_OEM_4},     {'\\', VK_OEM_5},    {'|', VK_OEM_5},     {']', VK_OEM_6},      {'}', VK_OEM_6},
    {'\'', VK_OEM_7},    {'"', VK_OEM_7},     {'!', '1'},          {'@', '2'},           {'#', '3'},
    {'$', '4'},          {'%', '5'},          {'^', '6'},          {'&', '7'},           {'*', '8'},
    {'(', '9'},          {')', '0'},
};

UINT Find(const Pair* begin, const Pair* end, guint value) {
    const Pair* const found = std::find_if(begin, end, [value](const Pair& each) { return each.value == value; });
    return found == end ? 0 : found->key;
}

UINT LetterOrDigit(guint value) {
    if (value >= 'a' && value <= 'z') return value - 'a' + 'A';
    if ((value >= 'A' && value <= 'Z') || (value >= '0' && value <= '9')) return value;
    if (value >= GDK_KEY_KP_0 && value <= GDK_KEY_KP_9) return value - GDK_KEY_KP_0 + VK_NUMPAD0;
    return value >= GDK_KEY_F1 && value <= GDK_KEY_F12 ? value - GDK_KEY_F1 + VK_F1 : 0;
}

// By what the key's levels have in any of the user's layouts, the plain level first.
UINT FromLayouts(guint16 hardware) {
    GdkKeymapKey* places = nullptr;
    guint* values = nullptr;
    gint count = 0;
    GdkKeymap* const map = gdk_keymap_get_for_display(gdk_display_get_default());
    if (!gdk_keymap_get_entries_for_keycode(map, hardware, &places, &values, &count)) return 0;
    UINT key = 0;
    for (gint level = 0; level < 2 && key == 0; ++level)
        for (gint i = 0; i < count && key == 0; ++i)
            if (places[i].level == level) key = LetterOrDigit(values[i]);
    g_free(places);
    g_free(values);
    return key;
}

// X11 and Wayland number keys alike: evdev's numbers and 8.
UINT FromPlace(guint16 hardware) {
    constexpr char kRows[] = "QWERTYUIOP\0\0\0\0ASDFGHJKL\0\0\0\0\0ZXCVBNM";
    constexpr guint16 kFirst = 24;
    return hardware >= kFirst && hardware - kFirst < static_cast<int>(std::size(kRows) - 1)
               ? static_cast<unsigned char>(kRows[hardware - kFirst])
               : 0;
}
}  // namespace

UINT KeyOf(const GdkEventKey& event) {
    if (const UINT key = Find(std::begin(kNamed), std::end(kNamed), event.keyval)) return key;
    if (const UINT key = LetterOrDigit(event.keyval)) return key;
    if (const UINT key = Find(std::begin(kSigns), std::end(kSigns), event.keyval)) return key;
    if (const UINT key = FromLayouts(event.hardware_keycode)) return key;
    return FromPlace(event.hardware_keycode);
}
