// Printing: whoever draws on a DC prints one page with the same calls, on the printer and the paper that the user chooses.
//
//     SIZE page;
//     HDC dc = OrvikBeginPrint(window, "Week 12", &page);   // asks by the system's own dialog; null: GetLastError tells why
//     ...draw within (0, 0) and page...
//     if (!OrvikEndPrint(dc, TRUE)) ...                     // goes to the printer here
//
// Thread rule: the user-interface thread, whose messages are handled while the question stands and while the printer takes the
// page; the owner is disabled meanwhile. Ownership: the DC belongs to the print, as a picture's does (platform/picture.h). Select
// the caller's own objects out before the end, and never delete or release it.
//
// The unit is 1/96 inch on paper, the origin the upper left corner of what is left of the sheet within its margins: 10 mm, or
// what the printer needs. What is drawn is printed as lines, areas and text; the rules are those of PDF pictures
// (platform/picture.h), and OrvikIsPrinting says yes. What was chosen last is offered again by the next question of the program.
#pragma once

#include "platform/win32.h"

constexpr DWORD kOrvikNoPrinter = 3012;  // the system's ERROR_PRINTER_NOT_FOUND

// Asks where to print, and on what. `document` is what the printer's queue shows; `page` gets the room to draw in. Null and the
// last error: 0 the user has given up; 50 there is no screen to ask on; 3012 the system has no printer; 31 it could not say what
// the printer can do; 87 a null pointer; 8 memory is short.
ORVIK_API HDC OrvikBeginPrint(HWND owner, LPCSTR document, SIZE* page);

// Ends the print and its DC, whatever the result. With `send` the page goes to the printer, or to the file that the user has
// chosen in place of one (which is replaced as a whole); TRUE once the system has taken it. FALSE and the last error: 0 the user
// has given up; 6 no print's DC; 50 something was drawn that a page cannot hold; 3012 the printer has gone; 1460 it has not taken
// the page within a minute, and may still; 3, 5, 112 no such folder, not allowed, disk full; 31 what else the system reports.
ORVIK_API BOOL OrvikEndPrint(HDC dc, BOOL send);
