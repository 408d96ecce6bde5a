// A folder of 20,000 files: the sorted list of their names, beside the standard library's directory iterator and sort.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/bench_support.h"
#include "platform/win32.h"
#include "ui/disk.h"

namespace {
namespace fs = std::filesystem;
constexpr int kFiles = 20'000;

// Made once, gone with the program.
class Folder {
public:
    Folder() : m_path(fs::temp_directory_path() / ("orvik-bench-disk-" + std::to_string(GetCurrentThreadId()))) {
        fs::create_directory(m_path);
        bench::Random random(7);
        for (int i = 0; i < kFiles; ++i) std::ofstream(m_path / ("reading" + std::to_string(random.Next()) + ".odb"));
    }
    ~Folder() { fs::remove_all(m_path); }
    const fs::path& Path() const { return m_path; }

private:
    const fs::path m_path;
};
const fs::path& TheFolder() {
    static const Folder folder;
    return folder.Path();
}

void ListOurs(benchmark::State& state) {
    const std::string pattern = (TheFolder() / "*").string();
    CStringArray names;
    for (auto _ : state) {
        names.RemoveAll();
        CDisk::ListDir(pattern.c_str(), names, 1, dirFilesOnly);
    }
    BENCH_REQUIRE(names.GetSize() == kFiles);
    bench::PerItem(state, kFiles);
}

void ListStandard(benchmark::State& state) {
    const fs::path& folder = TheFolder();
    std::vector<std::string> names;
    for (auto _ : state) {
        names.clear();
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (!entry.is_directory()) names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
    }
    BENCH_REQUIRE(names.size() == kFiles);
    bench::PerItem(state, kFiles);
}

BENCHMARK(ListOurs)->Name("disk/list/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(ListStandard)->Name("disk/list/std_filesystem")->Unit(benchmark::kMillisecond);
}  // namespace

BENCHMARK_MAIN();
