// Who has a serial port open, as far as this system tells it without touching the port. Any thread.
#pragma once

#include "platform/win32.h"

// "program (process id)" of each process that has the port open, with commas between them, for a port name as CreateFileA takes
// it without its prefix. Non-zero when there is one. On Linux processes of other users are seen by root only; Windows tells
// nobody, and the answer is always 0.
ORVIK_API BOOL OrvikPortHolder(LPCSTR port, LPSTR out, DWORD size);
