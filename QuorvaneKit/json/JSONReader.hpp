// Reader of one JSON object that keeps only the requested values. Other values are checked and
// skipped.
#pragma once

#include <cstdint>
#include <span>
#include <string>
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
    std::string text{};   // of a number as written, of a string without its escapes
    std::size_t end = 0;  // of a string: the offset after its closing quote
};

// `values` has one entry for each of `fields`. The whole text must be one JSON object in UTF-8,
// nested at most kDeepestNesting deep. If a key occurs twice in an object, the first value counts,
// whatever the second is.
inline constexpr std::size_t kDeepestNesting = 512;
CodingResult<void> readJSON(ByteView text, std::span<const JSONField> fields,
                            std::span<JSONValue> values);

}  // namespace quorvane
