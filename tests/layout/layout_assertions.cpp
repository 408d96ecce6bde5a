// Sizes by which modules built elsewhere lay out and hand over this module's objects.
#include "comm/com_wnd.h"
#include "comm/orvik_connection.h"
#include "comm/serial.h"
#include "comm/serial_device.h"
#include "comm/serial_ex.h"
#include "comm/serial_wnd.h"
#include "comm/task.h"
#include "commands/group_commands.h"
#include "time/time_point.h"
#include "time/time_span.h"
#include "time/timer.h"

static_assert(sizeof(DWORD) == 4 && sizeof(LONG) == 4 && sizeof(BOOL) == 4 && sizeof(WORD) == 2);
static_assert(sizeof(SYSTEMTIME) == 16 && sizeof(FILETIME) == 8 && sizeof(RECT) == 16 && sizeof(LOGFONTA) == 60);
static_assert(sizeof(DCB) == 28 && sizeof(COMMTIMEOUTS) == 20 && sizeof(COMMCONFIG) == 52);
static_assert(sizeof(NONCLIENTMETRICSA) == 344);
static_assert(sizeof(CString) == sizeof(void*));

// Times and spans hold their count and the class link, nothing else.
static_assert(sizeof(CVXTTime) == 16 && sizeof(CVXTTimeSpan) == 16);

// A port: class link, error, handle, event word, mask, handle; then what each derived class adds, in that order.
constexpr size_t kPointer = sizeof(void*);
static_assert(sizeof(CSerial) == (kPointer == 4 ? 24 : 40));
static_assert(sizeof(CSerialEx) == sizeof(CSerial) + 3 * kPointer);
static_assert(sizeof(CSerialWnd) == sizeof(CSerialEx) + 3 * kPointer);
static_assert(sizeof(CSerialDevice) == 2 * sizeof(CString));
static_assert(sizeof(COrvikConnection::StateChangedDelegate) == 2 * kPointer);

// A count-down: deadline and duration. A task: its virtual operations, the armed flag, the due time.
static_assert(sizeof(CTimer) == 8);
static_assert(sizeof(CVXTTask) == (kPointer == 4 ? 8 : 16) + sizeof(CVXTTime));

// A command: its virtual operations, manager, place, failed flag; the markers add nothing.
static_assert(sizeof(CDoCommand) == 4 * kPointer);
static_assert(sizeof(CUndoGroupCommand) == sizeof(CDoCommand) && sizeof(CRedoGroupCommand) == sizeof(CDoCommand));
