// In-place reader of one JSON object that keeps only the requested values. Other values are checked
// and skipped, so memory use does not depend on the text.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "QuorvaneKit/json/CodingError.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

inline constexpr std::size_t kRootObject = SIZE_MAX;

// A requested value. `parent` is the index, in the list of fields, of the object that contains it.
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

// The text to read, followed by the room that in-place reading needs. Values point into it.
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

// `values` has one entry for each of `fields`. The whole text must be one JSON object in UTF-8,
// nested at most kDeepestNesting deep. If a key occurs twice in an object, the first value counts,
// whatever the second is.
inline constexpr std::size_t kDeepestNesting = 512;
CodingResult<void> readJSON(JSONText& text, std::span<const JSONField> fields,
                            std::span<JSONValue> values);

}  // namespace quorvane
