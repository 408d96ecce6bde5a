#include "platform/service.h"

BOOL OrvikTellService(LPCSTR) { return FALSE; }
DWORD OrvikServiceWatchdog() { return 0; }
void OrvikAllowManyFiles() {}
void OrvikCatchReload() {}
BOOL OrvikReloadAsked() { return FALSE; }
