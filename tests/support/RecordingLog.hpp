// A log sink that keeps the rendered lines, private values included.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include "platform/LogRendering.hpp"

namespace quorvane {

using Lines = std::vector<std::string>;

// Any thread may log.
class RecordingLog {
public:
    struct Line {
        LogLevel level;
        std::string text;
        std::string redacted;  // as a log that hides private values would show it
    };

    LogSink sink() {
        return [this](const LogLine& line) {
            const std::lock_guard guard{mutex_};
            lines_.push_back({line.level, logLineText(line, true), logLineText(line, false)});
        };
    }

    std::vector<Line> lines() const {
        const std::lock_guard guard{mutex_};
        return lines_;
    }
    // Returns the texts in order, and clears them.
    Lines take() {
        const std::lock_guard guard{mutex_};
        Lines texts;
        for (Line& line : lines_) texts.push_back(std::move(line.text));
        lines_.clear();
        return texts;
    }
    bool contains(std::string_view text) const {
        const std::lock_guard guard{mutex_};
        return std::ranges::any_of(lines_, [&](const Line& line) { return line.text == text; });
    }

private:
    mutable std::mutex mutex_;
    std::vector<Line> lines_;
};

}  // namespace quorvane
