#include "QuorvaneKit/records/RecordValues.hpp"

#include <charconv>
#include <cmath>
#include <locale>
#include <sstream>
#include <utility>

#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/json/ISO8601Date.hpp"
#include "platform/Character.hpp"

namespace quorvane {
namespace {

using Kind = CodingError::Kind;

// Far more digits than any encoder writes for a double.
constexpr std::size_t kLongestNumber = 1024;

// The fast conversion, which not every standard library has. It does not distinguish a value that
// is too large from one that is too small, and converts neither.
template <typename Number>
std::optional<Number> quicklyFrom(std::string_view text) {
    if constexpr (requires(const char* place, Number& value) {
                      std::from_chars(place, place, value);
                  }) {
        Number value{};
        if (std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc{})
            return value;
    }
    return std::nullopt;
}

// `text` is already a valid JSON number. A stream with the classic locale is the only other
// conversion that ignores the process's locale; creating the first one takes 0.1 ms.
std::optional<double> doubleFrom(std::string_view text) {
    if (text.size() > kLongestNumber) return std::nullopt;
    if (const auto value = quicklyFrom<double>(text)) return value;
    std::istringstream stream{std::string{text}};
    stream.imbue(std::locale::classic());
    double value = 0;
    stream >> value;
    // Too large for a double, which is rejected, or too small for one, which some libraries also
    // report as an error although they have rounded it.
    if (stream.fail() && !(std::abs(value) < 1)) return std::nullopt;
    return value;
}

template <typename Enumeration>
ValueError readEnumeration(const JSONValue& value,
                           std::optional<Enumeration> (*fromRaw)(std::int64_t),
                           Enumeration& result) {
    std::int64_t raw = 0;
    if (const ValueError error = readValue(value, raw)) return error;
    const auto known = fromRaw(raw);
    if (!known) return Kind::dataCorrupted;
    result = *known;
    return {};
}

}  // namespace

ValueError readValue(const JSONValue& value, bool& result) {
    if (value.kind != JSONValue::Kind::boolean) return Kind::typeMismatch;
    result = value.boolean;
    return {};
}

ValueError readValue(const JSONValue& value, std::int64_t& result) {
    if (value.kind != JSONValue::Kind::number) return Kind::typeMismatch;
    const char* const end = value.text.data() + value.text.size();
    const auto [rest, error] = std::from_chars(value.text.data(), end, result);
    if (error != std::errc{}) return Kind::dataCorrupted;
    if (rest == end) return {};
    // 2 to the 63rd is exact as a double; the greatest 64-bit integer is not.
    constexpr double kBound = 9'223'372'036'854'775'808.0;
    const auto number = doubleFrom(value.text);
    if (!number || *number < -kBound || *number >= kBound) return Kind::dataCorrupted;
    result = static_cast<std::int64_t>(*number);
    if (static_cast<double>(result) != *number) return Kind::dataCorrupted;
    return {};
}

ValueError readValue(const JSONValue& value, double& result) {
    if (value.kind != JSONValue::Kind::number) return Kind::typeMismatch;
    const auto number = doubleFrom(value.text);
    if (!number) return Kind::dataCorrupted;
    result = *number;
    return {};
}

ValueError readValue(JSONValue& value, std::string& result) {
    if (value.kind != JSONValue::Kind::string) return Kind::typeMismatch;
    result = std::move(value.text);
    return {};
}

ValueError readValue(const JSONValue& value, WallTime& result) {
    if (value.kind != JSONValue::Kind::string) return Kind::typeMismatch;
    const auto time = wallTimeFromISO8601(value.text);
    if (!time) return Kind::dataCorrupted;
    result = *time;
    return {};
}

ValueError readValue(const JSONValue& value, XPCPlayerState& result) {
    return readEnumeration(value, xpcPlayerState, result);
}

ValueError readValue(const JSONValue& value, XPCPlayerType& result) {
    if (value.kind != JSONValue::Kind::string) return Kind::typeMismatch;
    const auto known = xpcPlayerType(value.text);
    if (!known) return Kind::dataCorrupted;
    result = *known;
    return {};
}

ValueError readValue(const JSONValue& value, XPCRepeatMode& result) {
    return readEnumeration(value, xpcRepeatMode, result);
}

bool writeValue(JSONWriter& writer, bool value) { return writer.Bool(value); }
bool writeValue(JSONWriter& writer, std::int64_t value) { return writer.Int64(value); }
bool writeValue(JSONWriter& writer, double value) { return writer.Double(value); }

bool writeValue(JSONWriter& writer, const std::string& value) {
    return isValidUTF8(value) &&
           writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
}

bool writeValue(JSONWriter& writer, WallTime value) {
    return writeValue(writer, iso8601Text(value));
}

bool writeValue(JSONWriter& writer, XPCPlayerState value) {
    return writeValue(writer, std::to_underlying(value));
}

bool writeValue(JSONWriter& writer, XPCPlayerType value) {
    return writeValue(writer, rawValue(value));
}

bool writeValue(JSONWriter& writer, XPCRepeatMode value) {
    return writeValue(writer, std::to_underlying(value));
}

std::optional<SharedBytes> readBase64(const JSONValue& base64) {
    auto bytes = decodeBase64(base64.text);
    if (!bytes) return std::nullopt;
    return SharedBytes{*std::move(bytes)};
}

void writeBase64(Bytes& text, const SharedBytes& bytes) { appendBase64(text, bytes.view()); }

}  // namespace quorvane
