// A folder of its own for one test, removed with all it holds.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

inline std::string BytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class TestFolder {
public:
    TestFolder() { std::filesystem::create_directories(m_folder); }
    ~TestFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    TestFolder(const TestFolder&) = delete;
    TestFolder& operator=(const TestFolder&) = delete;

    const std::filesystem::path& Folder() const { return m_folder; }
    std::string Path(const std::string& name) const { return (m_folder / name).string(); }
    std::string Read(const std::string& name) const { return BytesOf(m_folder / name); }
    void Write(const std::string& name, const std::string& bytes) const {
        std::ofstream(m_folder / name, std::ios::binary) << bytes;
    }
    // How many entries there are, whatever their names.
    size_t Count() const { return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(m_folder), {})); }

private:
    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("orvik-test-" + std::to_string(std::random_device()()));
};
