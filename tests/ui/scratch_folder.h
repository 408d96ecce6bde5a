// A folder of its own for one test, made the working directory, known by its drive on both homes; removed with all it holds.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include "ui/disk.h"

class ScratchFolder {
public:
    ScratchFolder() {
        m_before = std::filesystem::current_path();
        char temp[MAX_PATH] = "";
        GetTempPathA(MAX_PATH, temp);
        m_folder = std::filesystem::path(temp) / ("orvik-ui-" + std::to_string(std::random_device()()));
        std::filesystem::remove_all(m_folder);
        std::filesystem::create_directories(m_folder);
        std::filesystem::current_path(m_folder);
        CString dir;
        EXPECT_TRUE(CDisk::GetDir(dir));
        m_path = dir.GetString();
    }
    ~ScratchFolder() {
        std::filesystem::current_path(m_before);
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // "C:\...\", and the path of something in it.
    const std::string& Path() const { return m_path; }
    std::string operator()(const std::string& name) const { return m_path + name; }

    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(m_folder / name, std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(m_folder / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    void MakeFolder(const std::string& name) const { std::filesystem::create_directory(m_folder / name); }
    bool Has(const std::string& name) const { return std::filesystem::exists(m_folder / name); }
    // How many entries there are, whatever their names.
    int Count() const {
        return static_cast<int>(
            std::distance(std::filesystem::directory_iterator(m_folder), std::filesystem::directory_iterator()));
    }

private:
    std::filesystem::path m_before, m_folder;
    std::string m_path;
};
