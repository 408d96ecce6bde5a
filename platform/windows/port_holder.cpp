#include "platform/port_holder.h"

BOOL OrvikPortHolder(LPCSTR, LPSTR, DWORD) { return FALSE; }
