// A place in a map or list, to be handed back to the collection that gave it; null is none. A value for any thread.
#pragma once

struct AfxPosition;
using POSITION = AfxPosition*;
