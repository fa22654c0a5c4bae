// Reason why a record could not be read from its text or written to it.
#pragma once

#include <expected>
#include <string_view>

namespace quorvane {

struct CodingError {
    enum class Kind {
        dataCorrupted,  // not a JSON object, or a value outside its field's table or format
        keyNotFound,
        valueNotFound,  // null where a value is required
        typeMismatch,
        invalidValue,  // while writing: a number that is not finite, text that is not UTF-8
    };

    Kind kind = Kind::dataCorrupted;
    std::string_view key;  // a literal; empty when no single field caused it

    bool operator==(const CodingError&) const = default;
};

template <typename T>
using CodingResult = std::expected<T, CodingError>;

}  // namespace quorvane
