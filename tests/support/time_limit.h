// The time that a test may take: a wait that never ends fails its test by name, and the program with it, since nothing else can
// end a thread that waits. Works in every thread; costs a test nothing.
#pragma once

// What is waited for, while the object lives: a literal, told when the time runs out. Nests; one thread at a time.
class Awaiting {
public:
    explicit Awaiting(const char* what);
    ~Awaiting();
    Awaiting(const Awaiting&) = delete;
    Awaiting& operator=(const Awaiting&) = delete;

private:
    const char* m_before;
};

// Limits every test of this program to a minute; once, before they run.
void LimitTests();
// From within a test that may take longer: gives it so much from now on.
void LimitTest(unsigned seconds);

// The home's part: starts the time of a test anew, or stops it with 0. When it has run out, `expired` is called, which may only
// write through `put`, and the program ends with 1.
void SetTestTimer(unsigned seconds, void (*expired)(void (*put)(const char*)));
