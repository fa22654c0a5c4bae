// A table as text, for the user.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace quorvane {

// Columns as wide as their longest text; all rows are of the first one's length.
inline std::string textTable(std::vector<std::vector<std::string>> rows) {
    for (std::size_t column = 0; column + 1 < rows.front().size(); ++column) {
        std::size_t width = 0;
        for (const auto& row : rows) width = std::max(width, row[column].size() + 2);
        for (auto& row : rows) row[column].resize(width, ' ');
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (const std::string& cell : row) line += cell;
        text += line.substr(0, line.find_last_not_of(' ') + 1) + '\n';
    }
    return text;
}

}  // namespace quorvane
