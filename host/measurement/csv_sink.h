// Readings as lines of comma-separated values, each written when it comes: into a new file, or to standard output.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "afx/file.h"
#include "host/session/reading_writer.h"
#include "host/session/session.h"

// A Failure unless there is no file of that name, an empty one, or one that begins as a sink's for this description does.
void RequireOwnCsv(const std::string& path, CPropertyDB& description);

class CsvSink {
public:
    // "-": standard output; empty: nowhere. The file is made with the first reading, after the connection stands; `facts` has the
    // session's channels. `append`: behind what a file of this name holds.
    CsvSink(std::string path, bool append, CPropertyDB& facts);
    size_t ChannelCount() const { return m_session.Channels().size(); }

    // False once something could not be written; what comes later is not tried any more.
    bool Write(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags);
    // Whether all of it was written.
    bool Close();

private:
    bool Put();

    const std::string m_path;
    const bool m_append;
    const Session m_session;  // without readings, for the lines' form
    std::unique_ptr<ReadingWriter> m_lines;
    std::string m_text;
    CFile m_file;
    bool m_begun = false, m_whole = true;
};
