// A list of gestures as text, one a line (docs/formats.md): what a user would do with pointer and keys, to be done again by
// `orvikhost script`. Reading it decides everything that can be decided without a window. Any thread.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

// A place in the window: pixels of its client area, or parts (0 to 100) of something that is shown.
struct ScriptPoint {
    std::string place;  // empty: pixels; else "window", "plot", "time", "list", "bar", "axis1", "rubber1", "drag1", "tag1" ...
    double x = 0, y = 0;
};

struct ScriptStep {
    enum Kind { Size, Press, Move, Release, Wheel, Key, Type, Menu, Picture, Save, Remember, Expect };
    Kind kind = Move;
    int line = 0;
    ScriptPoint point;
    bool right = false, twice = false;  // which button; whether it is pressed twice in a row
    bool shift = false, control = false;
    WORD key = 0;
    int number = 0, second = 0;  // notches of the wheel, towards the user negative; width and height
    std::string text;            // typed, a menu command's name, a path
};

// Steps of a script in UTF-8; drags and clicks are taken apart. A mistake is a Failure that names the line.
std::vector<ScriptStep> ParseScript(const std::string& name, const std::string& text);
