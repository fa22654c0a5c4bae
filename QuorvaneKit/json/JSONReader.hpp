// Reads one JSON object in place and keeps only the values that are asked for. What is not asked
// for is checked and passed over, so the memory taken does not depend on the text.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "QuorvaneKit/json/CodingError.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

inline constexpr std::size_t kRootObject = SIZE_MAX;

// A value that is asked for. `parent` is the place, in the list of fields, of the object it stands
// in.
struct JSONField {
    std::string_view key;
    std::size_t parent = kRootObject;
};

struct JSONValue {
    enum class Kind : std::uint8_t { absent, null, boolean, number, string, object, array };
    Kind kind = Kind::absent;
    bool boolean = false;
    std::string_view text;  // of a number as written, of a string without its escapes
};

// The text to read, followed by the room that reading in place needs. Values point into it.
class JSONText {
public:
    explicit JSONText(Bytes text);
    JSONText(JSONText&&) = default;
    JSONText& operator=(JSONText&&) = default;
    JSONText(const JSONText&) = delete;
    JSONText& operator=(const JSONText&) = delete;

    char* data() { return reinterpret_cast<char*>(bytes_.data()); }
    std::size_t size() const { return size_; }

private:
    Bytes bytes_;
    std::size_t size_;
};

// `values` has one place for each of `fields`. The whole text must be one JSON object and nothing
// more, in UTF-8 throughout, nested at most kDeepestNesting deep. Of a key that stands twice in one
// object the first value counts, whatever the second is.
inline constexpr std::size_t kDeepestNesting = 512;
CodingResult<void> readJSON(JSONText& text, std::span<const JSONField> fields,
                            std::span<JSONValue> values);

}  // namespace quorvane
