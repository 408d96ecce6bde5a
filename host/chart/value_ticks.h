// Ticks of a value axis: which values they stand at, and what is written at them and at the axis's head. Decided without a
// drawing context. User-interface thread only, since numbers are written in the user's regional format.
//
// Ticks stand at multiples of 1, 2 or 5 times a power of ten, as close as labels stay readable. Where that would leave fewer than
// three, steps of other round numbers are taken and labels may stand closer: three there are wherever the room is five labels
// long, as long as a double can tell so many values within the range apart.
//
// Labels have just the digits that tell them apart. Where that makes long numbers, thousands of the unit or thousandths take its
// place ("MWh"), or a power of ten where the unit has no such name; and what is the same in all of them stands at the head, to be
// added: "Wh + 1,234,500".
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

struct ValueTicks {
    std::vector<double> values;       // of the large ticks, increasing
    std::vector<std::string> labels;  // one for each
    std::vector<double> small;        // of the ticks between and beside them, increasing
    std::string head;                 // the unit, and what else the labels leave out
};

// From `low` to `high`, on `room` pixels, with labels that take `label` pixels along the axis. No ticks, and the unit as head,
// where there is nothing between the ends or they are not finite.
ValueTicks DivideValues(double low, double high, LONG room, LONG label, const std::string& unit);
