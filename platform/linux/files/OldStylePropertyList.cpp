#include "platform/linux/files/OldStylePropertyList.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>

#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/files/PropertyListSafety.hpp"

namespace quorvane {
namespace {

bool isWordCharacter(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return std::isalnum(byte) || byte >= 0x80 ||
           std::string_view{"_$+/:.-"}.find(character) != std::string_view::npos;
}

void appendUTF8(std::string& text, unsigned unit) {
    if (unit < 0x80) {
        text += static_cast<char>(unit);
    } else if (unit < 0x800) {
        text += static_cast<char>(0xC0 | (unit >> 6));
        text += static_cast<char>(0x80 | (unit & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | (unit >> 12));
        text += static_cast<char>(0x80 | ((unit >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (unit & 0x3F));
    }
}

// Reads from the front of the text. A read function that returns false leaves the rest unread; the
// list is then malformed.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool readRoot(PropertyValue& value) {
        return readValue(value, 0) && peek() == '\0' && rest_.empty();
    }
    // The next significant character; NUL at the end of the text or for a NUL in it.
    char peek() {
        while (skipBlank() || skipComment()) {
        }
        return rest_.empty() ? '\0' : rest_.front();
    }

private:
    bool skipBlank() {
        const std::size_t end = std::min(rest_.find_first_not_of(" \t\r\n"), rest_.size());
        rest_.remove_prefix(end);
        return end > 0;
    }
    bool skipComment() {
        const bool isLine = rest_.starts_with("//");
        if (!isLine && !rest_.starts_with("/*")) return false;
        const std::size_t end = isLine ? rest_.find('\n') : rest_.find("*/", 2);
        rest_.remove_prefix(end == rest_.npos ? rest_.size() : end + (isLine ? 1 : 2));
        return true;
    }
    bool take(char character) {
        if (peek() != character || rest_.empty()) return false;
        rest_.remove_prefix(1);
        return true;
    }

    bool readValue(PropertyValue& value, int depth) {
        if (depth > kDeepestList || ++values_ > kMaxListValues) return false;
        if (take('{')) return readDictionary(value.value.emplace<PropertyDictionary>(), depth);
        if (take('(')) return readArray(value.value.emplace<PropertyArray>(), depth);
        if (take('<')) return readData(value.value.emplace<Bytes>());
        return readText(value.value.emplace<std::string>());
    }
    bool readDictionary(PropertyDictionary& dictionary, int depth) {
        while (!take('}')) {
            std::string key;
            if (!readText(key) || !take('=') || !readValue(dictionary[key], depth + 1) ||
                !take(';'))
                return false;
        }
        return true;
    }
    bool readArray(PropertyArray& array, int depth) {
        while (!take(')')) {
            if (!readValue(array.emplace_back(), depth + 1)) return false;
            if (!take(',') && peek() != ')') return false;
        }
        return true;
    }
    bool readData(Bytes& data) {
        while (!take('>')) {
            unsigned high = 0;
            unsigned low = 0;
            if (!readDigits(high, 1, 16)) return false;
            peek();  // skips blanks
            if (!readDigits(low, 1, 16)) return false;
            data.push_back(static_cast<std::byte>(high * 16 + low));
        }
        return true;
    }
    // Reads a number of at most this many digits.
    bool readDigits(unsigned& number, std::size_t most, int base) {
        const char* const begin = rest_.data();
        const char* const end = begin + std::min(most, rest_.size());
        const auto [rest, error] = std::from_chars(begin, end, number, base);
        rest_.remove_prefix(static_cast<std::size_t>(rest - begin));
        return error == std::errc{};
    }
    bool readText(std::string& text) {
        const char first = peek();
        if (first == '"' || first == '\'') return readQuoted(text, first);
        std::size_t length = 0;
        while (length < rest_.size() && isWordCharacter(rest_[length])) ++length;
        text = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return length > 0;
    }
    bool readQuoted(std::string& text, char quote) {
        rest_.remove_prefix(1);
        while (!rest_.empty()) {
            const char character = rest_.front();
            rest_.remove_prefix(1);
            if (character == quote) return true;
            if (character == '\0') return false;
            if (character != '\\')
                text += character;
            else if (!readEscape(text))
                return false;
        }
        return false;
    }
    bool readEscape(std::string& text) {
        if (rest_.empty()) return false;
        const char character = rest_.front();
        if (character == 'U') {
            rest_.remove_prefix(1);
            return readUnit(text, 4, 16);
        }
        if (character >= '0' && character <= '7') return readUnit(text, 3, 8);
        constexpr std::string_view names = "abfnrtv";
        const std::size_t place = names.find(character);
        text += place == names.npos ? character : "\a\b\f\n\r\t\v"[place];
        rest_.remove_prefix(1);
        return true;
    }
    // Reads the number of a UTF-16 unit.
    bool readUnit(std::string& text, std::size_t most, int base) {
        unsigned unit = 0;
        if (!readDigits(unit, most, base) || unit == 0) return false;
        appendUTF8(text, unit);
        return true;
    }

    std::string_view rest_;
    std::size_t values_ = 0;
};

}  // namespace

bool isOldStyleList(ByteView contents) {
    const char first = Reader{textOf(contents)}.peek();
    return first == '{' || first == '(';
}

Result<PropertyValue> parseOldStyleList(ByteView contents) {
    Result<PropertyValue> value{std::in_place};
    if (!Reader{textOf(contents)}.readRoot(*value))
        return posixError("malformed old-style property list", EINVAL);
    return value;
}

}  // namespace quorvane
