// The table that every timed program prints, as docs/performance.md shows it.
#pragma once

#include <optional>
#include <string>

namespace quorvane {

// One measured thing. A goal that is missed needs its reason.
struct ReportRow {
    std::string what;
    std::optional<double> ratio{};
    std::string against{};  // what the ratio is to
    std::string figure{};
    std::string goal{};
    std::optional<bool> isMet{};
    std::string reason{};  // shown only where the goal is missed
};

void beginReport(const std::string& title);
void report(const ReportRow& row);

// "12.3 µs", "1.23 ms" or "4.56 s", with three figures that count.
std::string timeText(double microseconds);
// "12.3 MB".
std::string sizeText(double bytes);
std::string numberText(double value, const char* unit = "");

}  // namespace quorvane
