// Arguments of one log line in the unified log's binary format.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Log.hpp"

namespace quorvane {

// Two bytes come first: flags for private arguments and text arguments, and the argument count.
// Each argument follows: its kind and privacy, its size, and its number or a pointer to its text.
// The compiler builds the same format for the system's logging macro. The buffer owns its texts and
// borrows nothing from the line, so it cannot be copied.
class OSLogBuffer {
public:
    explicit OSLogBuffer(const LogLine& line);
    OSLogBuffer(const OSLogBuffer&) = delete;
    OSLogBuffer& operator=(const OSLogBuffer&) = delete;

    std::uint8_t* data() { return bytes_.data(); }
    std::uint32_t size() const { return static_cast<std::uint32_t>(bytes_.size()); }

private:
    void addText(const LogPlaceholder& placeholder, std::string_view text);
    template <typename Number>
    void addNumber(Number number);
    template <typename Value>
    void append(Value value);

    std::vector<std::uint8_t> bytes_;
    std::vector<std::string> texts_;  // NUL-terminated, unlike a line's texts
};

}  // namespace quorvane
