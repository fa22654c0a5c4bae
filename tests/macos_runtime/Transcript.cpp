#include "tests/macos_runtime/Transcript.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>

namespace macrt {
namespace {

using Sections = std::map<std::string, std::string>;

Sections read(const std::string& path) {
    Sections sections;
    std::string name;
    std::ifstream file{path};
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('['))
            name = line;
        else if (!line.empty())
            sections[name] += line + "\n";
    }
    return sections;
}

void write(const std::string& path, const Sections& sections) {
    std::ofstream file{path};
    bool isFirst = true;
    for (const auto& [name, lines] : sections) {
        if (lines.empty()) continue;
        file << (std::exchange(isFirst, false) ? "" : "\n") << name << "\n" << lines;
    }
}

}  // namespace

void expectTranscript(const std::vector<std::string>& calls) {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    const std::string path =
        std::string{QUORVANE_TRANSCRIPTS} + "/" + test->test_suite_name() + ".txt";
    const std::string name = "[" + std::string{test->name()} + "]";
    std::string actual;
    for (const std::string& call : calls) actual += call + "\n";
    Sections sections = read(path);
    if (std::getenv("QUORVANE_WRITE_TRANSCRIPTS") == nullptr)
        EXPECT_EQ(sections[name], actual) << "Differs from " << path;
    else if (std::exchange(sections[name], actual) != actual)
        write(path, sections);
}

}  // namespace macrt
