#include "platform/screen.h"

void OrvikKeepWindowsInMemory() {}
BOOL OrvikHasScreen() { return TRUE; }
