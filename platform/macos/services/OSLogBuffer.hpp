// The arguments of one line in the form in which the unified log takes them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Log.hpp"

namespace quorvane {

// Two bytes, whether any argument is private and any is text, and how many there are; then for each
// argument its kind with its privacy, its size, and the number itself or a pointer to the text. It
// is what the compiler builds where a line is logged by the system's macro. Borrows nothing from
// the line, but its texts are its own: it cannot be copied.
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
    std::vector<std::string> texts_;  // with a NUL behind each, which a line's text need not have
};

}  // namespace quorvane
