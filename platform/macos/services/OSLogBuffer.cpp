#include "platform/macos/services/OSLogBuffer.hpp"

#include <array>
#include <bit>

namespace quorvane {
namespace {

constexpr std::uint8_t kHasPrivate = 1;
constexpr std::uint8_t kHasText = 2;

constexpr std::uint8_t kNumber = 0x00;
constexpr std::uint8_t kText = 0x20;
constexpr std::uint8_t kPrivate = 0x01;
constexpr std::uint8_t kPublic = 0x02;

}  // namespace

OSLogBuffer::OSLogBuffer(const LogLine& line) : bytes_{0, 0} {
    // Reserve, because the buffer points to the texts and they must not move.
    texts_.reserve(line.arguments.size());
    std::size_t from = 0;
    LogPlaceholder placeholder;
    for (const LogArgument& argument : line.arguments) {
        if (!nextPlaceholder(line.format, from, placeholder)) break;
        from = placeholder.end;
        ++bytes_[1];
        // LogFormat has checked that each argument fits its placeholder.
        using Kind = LogPlaceholder::Kind;
        switch (placeholder.kind) {
            case Kind::text: addText(placeholder, std::get<std::string_view>(argument)); break;
            case Kind::boolean:
            case Kind::int32:
                addNumber(static_cast<std::int32_t>(std::get<std::int64_t>(argument)));
                break;
            case Kind::int64: addNumber(std::get<std::int64_t>(argument)); break;
            case Kind::uint32:
                addNumber(static_cast<std::uint32_t>(std::get<std::uint64_t>(argument)));
                break;
            case Kind::uint64: addNumber(std::get<std::uint64_t>(argument)); break;
            case Kind::real: addNumber(std::get<double>(argument)); break;
        }
    }
}

void OSLogBuffer::addText(const LogPlaceholder& placeholder, std::string_view text) {
    // Unmarked text has neither flag; the log then treats it as private.
    const bool isMarked = placeholder.end - placeholder.begin > 2;
    std::uint8_t privacy = 0;
    if (isMarked) privacy = placeholder.isPrivate ? kPrivate : kPublic;
    bytes_[0] |= kHasText;
    if (privacy == kPrivate) bytes_[0] |= kHasPrivate;
    bytes_.push_back(kText | privacy);
    append<std::uint8_t>(sizeof(const char*));
    append(texts_.emplace_back(text).c_str());
}

template <typename Number>
void OSLogBuffer::addNumber(Number number) {
    bytes_.push_back(kNumber);
    append<std::uint8_t>(sizeof number);
    append(number);
}

template <typename Value>
void OSLogBuffer::append(Value value) {
    const auto raw = std::bit_cast<std::array<std::uint8_t, sizeof value>>(value);
    bytes_.insert(bytes_.end(), raw.begin(), raw.end());
}

}  // namespace quorvane
