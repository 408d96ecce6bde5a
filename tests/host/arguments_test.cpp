// The words of a command line, and files that are given twice.
#include "host/words/arguments.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/session/database_file.h"
#include "tests/host/sentence_of.h"

namespace {
Arguments Read(const std::vector<std::string>& words) { return {words, {"--out", "--for"}, {"--all"}, 2, {"--tag"}}; }
}  // namespace

TEST(Arguments, AValueStandsBehindTheOptionOrItsEqualsSign) {
    const Arguments arguments = Read({"--out=a=b", "--for", "10 min", "--tag=-x", "--tag", "-5", "FILE"});
    EXPECT_EQ(arguments.Get("--out"), "a=b");
    EXPECT_EQ(arguments.Span("--for", 0, 1'000'000'000, 0), 600'000'000);
    EXPECT_EQ(arguments.Milliseconds("--for", 0, 1'000'000, 0), 600'000u);
    EXPECT_EQ(arguments.All("--tag"), (std::vector<std::string>{"-x", "-5"}));
    EXPECT_EQ(arguments.At(0, "FILE"), "FILE");
}

TEST(Arguments, MistakesNameTheirOption) {
    const std::pair<std::vector<std::string>, const char*> table[] = {{{"--out"}, "--out needs"},
                                                                      {{"--out="}, "--out needs"},
                                                                      {{"--out", ""}, "--out needs"},
                                                                      {{"--out", "--all"}, "--out"},
                                                                      {{"--out", "--for=1 s"}, "--out"},
                                                                      {{"--all=1"}, "--all takes no"},
                                                                      {{"--al"}, "--al"},
                                                                      {{"--oot=x"}, "mean --out"},
                                                                      {{"--xyz"}, "--help lists"},
                                                                      {{"--out=a", "--out", "b"}, "twice"}};
    for (const auto& [words, named] : table)
        EXPECT_NE(SentenceOf([&, w = words] { Read(w); }).find(named), std::string::npos) << words[0];
    const auto span = [](const char* text) {
        return SentenceOf([&] { Read({"--for", text}).Milliseconds("--for", 1, 604'800'000, 0); });
    };
    EXPECT_NE(span("1.5").find("such as"), std::string::npos);
    EXPECT_NE(span("2 weeks").find("1 ms to 7 d"), std::string::npos) << span("2 weeks");
    EXPECT_NE(span("250 us").find("1 ms to 7 d"), std::string::npos);
    EXPECT_NE(span("2.5 ms").find("whole milliseconds"), std::string::npos);
    EXPECT_EQ(span("7 d"), "");
}

TEST(Arguments, AFileThatIsGivenTwiceIsSeenThroughItsNames) {
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path(), folder = fs::temp_directory_path() / "orvik-same-file";
    fs::remove_all(folder);
    fs::create_directories(folder / "inner");
    fs::current_path(folder);
    std::ofstream("a.odb") << "x";
    std::ofstream("other.odb") << "x";
    std::error_code error;
    fs::create_hard_link("a.odb", "hard.odb", error);
    const bool hard = !error;
    fs::create_directory_symlink("inner", "link", error);
    const bool linked = !error;
    const auto refusal = [](const char* one, const char* other) {
        return SentenceOf([&] { RequireDifferentFiles({{"--logger", "none.xml"}, {"--out", one}, {"--trace", other}}); });
    };
    EXPECT_NE(refusal("a.odb", "./inner/../a.odb").find("--out and --trace"), std::string::npos);
    EXPECT_NE(refusal("new.odb", "inner/../new.odb"), "");
    EXPECT_EQ(refusal("a.odb", "hard.odb").empty(), !hard);
    EXPECT_EQ(refusal("inner/new.odb", "link/new.odb").empty(), !linked);
    EXPECT_EQ(refusal("a.odb", "other.odb"), "");
    EXPECT_EQ(refusal("new.odb", "inner/new.odb"), "");
    EXPECT_EQ(refusal("", ""), "");
    // The case of letters counts where files that differ in nothing else can stand side by side.
    EXPECT_EQ(refusal("a.odb", "A.ODB").empty(), !fs::exists("A.ODB"));
    EXPECT_EQ(refusal("new.odb", "NEW.ODB").empty(), !fs::exists("A.ODB"));
    fs::current_path(before);
    fs::remove_all(folder);
}
