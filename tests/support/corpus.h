// The texts that the fuzzers of the readers start from, for tests that type them into fields. FUZZ_CORPUS names their folder.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

// Up to the first zero byte, where a control's text ends, and to `most` bytes; of the files with regional texts each line too.
inline std::vector<std::string> CorpusTexts(size_t most) {
    std::vector<std::string> texts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(FUZZ_CORPUS)) {
        if (!entry.is_regular_file()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        const std::string text((std::istreambuf_iterator<char>(in)), {});
        texts.push_back(text.substr(0, most).c_str());
        if (entry.path().parent_path().filename() != "fuzz_text") continue;
        std::istringstream lines(texts.back());
        for (std::string line; std::getline(lines, line);) texts.push_back(line);
    }
    return texts;
}
