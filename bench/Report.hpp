// The table that a timed program prints for docs/performance.md.
#pragma once

#include <optional>
#include <string>

namespace quorvane {

// One measurement. A goal needs a reason that is shown when it is missed.
struct ReportRow {
    std::string what;
    std::optional<double> ratio{};
    std::string against{};  // the floor or rival of the ratio
    std::string figure{};
    std::string goal{};
    std::optional<bool> isMet{};
    std::string reason{};
};

void beginReport(const std::string& title);
void report(const ReportRow& row);

// "12.3 µs", "1.23 ms" or "4.56 s": three significant figures.
std::string timeText(double microseconds);
// "12.3 MB".
std::string sizeText(double bytes);
std::string numberText(double value, const char* unit = "");

}  // namespace quorvane
