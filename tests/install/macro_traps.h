// Macros that users' other headers bring along: those of widget toolkits, window systems and windows.h.
#define slots
#define signals public
#define emit
#define foreach for
#define min(a, b) ((a) < (b) ? (a) : (b))
#define max(a, b) ((a) > (b) ? (a) : (b))
#define Bool int
#define None 0L
#define Status int
#define Success 0
#define Always 2
