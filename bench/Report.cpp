#include "bench/Report.hpp"

#include <cstdio>

namespace quorvane {
namespace {

std::string withUnit(double value, const char* unit) {
    const int decimals = value < 9.995 ? 2 : value < 99.95 ? 1 : 0;
    char text[64];
    std::snprintf(text, sizeof text, "%.*f%s", decimals, value, unit);
    return text;
}

}  // namespace

void beginReport(const std::string& title) {
    std::printf("\n### %s\n\n", title.c_str());
    std::printf("| what | ratio | to | figure | goal | |\n|---|---:|---|---:|---|---|\n");
}

void report(const ReportRow& row) {
    const std::string ratio = row.ratio ? withUnit(*row.ratio, " ×") : "";
    std::string verdict;
    if (row.isMet) verdict = *row.isMet ? "met" : "**missed**: " + row.reason;
    std::printf("| %s | %s | %s | %s | %s | %s |\n", row.what.c_str(), ratio.c_str(),
                row.against.c_str(), row.figure.c_str(), row.goal.c_str(), verdict.c_str());
    std::fflush(stdout);
}

std::string timeText(double microseconds) {
    if (microseconds < 1000) return withUnit(microseconds, " µs");
    if (microseconds < 1e6) return withUnit(microseconds / 1e3, " ms");
    return withUnit(microseconds / 1e6, " s");
}

std::string sizeText(double bytes) { return withUnit(bytes / 1e6, " MB"); }

std::string numberText(double value, const char* unit) { return withUnit(value, unit); }

}  // namespace quorvane
