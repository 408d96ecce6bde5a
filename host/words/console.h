// The terminal: what is shown, what has gone wrong, and a progress line that only a person at a terminal sees.
#pragma once

#include <string>
#include <string_view>

enum ExitCode { kDone = 0, kWrongUse = 1, kCommunicationFailed = 2, kFileFailed = 3 };

// Thrown by a command: ends it with this exit code and this one sentence (UTF-8) on the error stream.
struct Failure {
    ExitCode exitCode;
    std::string sentence;
};

// UTF-8 to standard output; a line end is added.
void Print(std::string_view line);
// A Failure if anything said so far could not be written. Ends a command that was otherwise successful.
void FinishOutput();
// To the error stream, after "orvikhost: ".
void PrintError(std::string_view sentence);

// One line at the bottom of the terminal, rewritten as work goes on and gone when the object is. Nothing in a pipe or a file.
class ProgressLine {
public:
    ProgressLine();
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    void Show(std::string_view text);
    void Clear();  // until the next Show, for a sentence in its place

private:
    bool m_visible;
    size_t m_length = 0;
    std::string m_shown;
};
