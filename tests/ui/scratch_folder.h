// A folder of its own for one test, made the working directory, known by its drive on both homes.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/test_folder.h"
#include "ui/disk.h"

class ScratchFolder : public TestFolder {
public:
    ScratchFolder() {
        std::filesystem::current_path(Folder());
        CString dir;
        EXPECT_TRUE(CDisk::GetDir(dir));
        m_path = dir.GetString();
    }
    ~ScratchFolder() { std::filesystem::current_path(m_before); }

    // "C:\...\", and the path of something in it.
    const std::string& Path() const { return m_path; }
    std::string operator()(const std::string& name) const { return m_path + name; }
    void MakeFolder(const std::string& name) const { std::filesystem::create_directory(Folder() / name); }

private:
    const std::filesystem::path m_before = std::filesystem::current_path();
    std::string m_path;
};
