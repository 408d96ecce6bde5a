// The files that a user's windows have worked on last, the newest first: one list for all windows, kept in a file of the user's,
// a path a line (KeptLines). It is read anew for
// every question and replaced as a whole, so that of two windows that change it at once one may lose its entry and nothing else.
// Where no such file can be, the list stays empty. House text. Any thread.
#pragma once

#include <string>
#include <vector>

class RecentFiles {
public:
    static constexpr size_t kMost = 8;

    explicit RecentFiles(std::string name) : m_name(std::move(name)) {}  // of the file
    std::vector<std::string> All() const;
    // Comes to the beginning, by its full path.
    void Add(const std::string& path) const;
    void Remove(const std::string& path) const;

private:
    void Change(const std::string& path, bool keep) const;
    const std::string m_name;
};
