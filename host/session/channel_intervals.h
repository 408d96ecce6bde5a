// How often the channels of a logger are read: each with every reading, or, with an interval of its own in the description
// (`Channels.<key>.rInterval`, or `sGroup` and `Groups.<group>.rInterval`), with every second, third ... of them. Also the value
// that stands in a reading for a channel that was not to be read.
// Text is the house's, sentences are UTF-8. One thread for a database.
#pragma once

#include <vector>

#include "propdb/property_db_interface.h"

// Microseconds for each channel of the description, in the order of their keys; 0: with every reading. A Failure that names the
// key for what is no number of seconds, and for a group that there is not.
std::vector<__int64> OwnIntervals(IPropertyDB& description);

// Which channels of a session have such an interval, by the description in its facts (`Logger`); what that says wrongly is none.
std::vector<bool> HaveOwnIntervals(IPropertyDB& facts, size_t channels);

// With which readings each channel is read, for readings `interval` microseconds apart: 1 with every one, 2 with every second
// one. Empty where that is 1 for all. A Failure for an interval that is no whole multiple.
std::vector<DWORD> ChannelSteps(IPropertyDB& description, __int64 interval);

// The NaN that stands for a value that was not to be read: unlike others it leaves no hole. IsNotDue knows it by its bits.
double NotDueValue();
bool IsNotDue(double value);
