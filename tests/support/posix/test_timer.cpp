// An alarm, not a thread: tests fork, and what a sanitizer knows of threads does not outlive that.
#include <signal.h>
#include <unistd.h>

#include <cstring>

#include "tests/support/time_limit.h"

namespace {
void (*g_expired)(void (*)(const char*));

void Put(const char* text) {
    if (write(STDOUT_FILENO, text, std::strlen(text)) < 0) _exit(1);
}
void OnAlarm(int) {
    g_expired(Put);
    _exit(1);
}
}  // namespace

void SetTestTimer(unsigned seconds, void (*expired)(void (*)(const char*))) {
    g_expired = expired;
    signal(SIGALRM, OnAlarm);
    alarm(seconds);
}
