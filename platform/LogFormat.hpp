// Format strings of log lines. The compiler checks their placeholders against the arguments' types,
// and the program keeps them unchanged.
#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>
#include <variant>

namespace quorvane {

// One argument. Text is borrowed for the duration of the logging call.
using LogArgument = std::variant<std::int64_t, std::uint64_t, double, std::string_view>;

// One placeholder of a format string: "%{public}s", "%{private}s", "%s", "%{bool}d", "%d", "%ld",
// "%u", "%lu", "%llu" or "%f".
struct LogPlaceholder {
    enum class Kind { text, boolean, int32, int64, uint32, uint64, real };
    Kind kind = Kind::text;
    bool isPrivate = false;  // true for text that is not marked public
    std::size_t begin = 0;   // index of the '%'
    std::size_t end = 0;     // index after its last character
};

namespace detail {

constexpr bool readLetters(std::string_view letters, LogPlaceholder& placeholder) {
    struct Row {
        std::string_view letters;
        LogPlaceholder::Kind kind;
        bool isPrivate;
    };
    using Kind = LogPlaceholder::Kind;
    constexpr Row rows[] = {
        {"{public}s", Kind::text, false}, {"{private}s", Kind::text, true},
        {"s", Kind::text, true},          {"{bool}d", Kind::boolean, false},
        {"d", Kind::int32, false},        {"ld", Kind::int64, false},
        {"u", Kind::uint32, false},       {"lu", Kind::uint64, false},
        {"llu", Kind::uint64, false},     {"f", Kind::real, false},
    };
    for (const Row& row : rows) {
        if (!letters.starts_with(row.letters)) continue;
        placeholder.kind = row.kind;
        placeholder.isPrivate = row.isPrivate;
        placeholder.end = placeholder.begin + 1 + row.letters.size();
        return true;
    }
    return false;
}

}  // namespace detail

// Finds the next placeholder at or after `from`. Returns false when there is no '%'. A '%' that
// begins no known placeholder leaves `placeholder.end` at 0.
constexpr bool nextPlaceholder(std::string_view format, std::size_t from,
                               LogPlaceholder& placeholder) {
    const std::size_t begin = format.find('%', from);
    if (begin == std::string_view::npos) return false;
    placeholder = LogPlaceholder{};
    placeholder.begin = begin;
    return detail::readLetters(format.substr(begin + 1), placeholder);
}

template <typename T>
constexpr bool fitsPlaceholder(LogPlaceholder::Kind kind) {
    using Kind = LogPlaceholder::Kind;
    switch (kind) {
        case Kind::text: return std::convertible_to<T, std::string_view>;
        case Kind::boolean: return std::same_as<T, bool>;
        case Kind::int32:
            return std::signed_integral<T> && sizeof(T) <= 4 && !std::same_as<T, bool>;
        case Kind::int64: return std::signed_integral<T> && !std::same_as<T, bool>;
        case Kind::uint32:
            return std::unsigned_integral<T> && sizeof(T) <= 4 && !std::same_as<T, bool>;
        case Kind::uint64: return std::unsigned_integral<T> && !std::same_as<T, bool>;
        case Kind::real: return std::floating_point<T>;
    }
    return false;
}

// A string literal whose placeholders fit Arguments; anything else does not compile.
template <typename... Arguments>
class LogFormat {
public:
    template <std::size_t size>
    consteval LogFormat(const char (&literal)[size]) : text_(literal, size - 1) {
        LogPlaceholder placeholder;
        std::size_t from = 0;
        bool fits = true;
        [[maybe_unused]] const auto take = [&]<typename T>() {
            fits = fits && nextPlaceholder(text_, from, placeholder) &&
                   fitsPlaceholder<T>(placeholder.kind);
            from = placeholder.end;
        };
        (take.template operator()<std::remove_cvref_t<Arguments>>(), ...);
        if (!fits || text_.find('%', from) != std::string_view::npos)
            throw "the placeholders do not fit the arguments";
    }

    constexpr std::string_view text() const { return text_; }  // followed by a NUL

private:
    std::string_view text_;
};

}  // namespace quorvane
