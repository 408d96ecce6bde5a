#include "host/words/console.h"

#include <cstdio>

#include "host/words/isolated.h"
#include "host/words/texts.h"
#include "platform/win32.h"

void Print(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

void FinishOutput() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) throw Failure{kFileFailed, Say(Text::OutputFailed)};
}

void PrintError(std::string_view sentence) {
    std::fflush(stdout);
    std::fprintf(stderr, "orvikhost: %s\n", WithoutControls(std::string(sentence)).c_str());
    std::fflush(stderr);
}

ProgressLine::ProgressLine() {
    DWORD mode = 0;
    m_visible = GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

ProgressLine::~ProgressLine() { Clear(); }

void ProgressLine::Clear() {
    if (m_visible && m_length > 0) std::fprintf(stderr, "\r%*s\r", static_cast<int>(m_length), "");
    m_length = 0;
    m_shown.clear();
    std::fflush(stderr);
}

void ProgressLine::Show(std::string_view text) {
    if (!m_visible || text == m_shown) return;
    m_shown = text;
    const int padding = text.size() < m_length ? static_cast<int>(m_length - text.size()) : 0;
    std::fprintf(stderr, "\r%.*s%*s", static_cast<int>(text.size()), text.data(), padding, "");
    std::fflush(stderr);
    m_length = text.size();
}
