// Reader and writer of a record's single values. Only for the coders.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "QuorvaneKit/json/CodingError.hpp"
#include "QuorvaneKit/json/JSONReader.hpp"
#include "QuorvaneKit/json/JSONWriter.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"

namespace quorvane {

// nullopt when the value was read.
using ValueError = std::optional<CodingError::Kind>;

// Types are strict: a number is not a bool, text is not a number. A number written with a point or
// an exponent is an integer if its value is one ("64.0").
ValueError readValue(const JSONValue& value, bool& result);
ValueError readValue(const JSONValue& value, std::int64_t& result);
ValueError readValue(const JSONValue& value, double& result);
ValueError readValue(JSONValue& value, std::string& result);  // moves it
ValueError readValue(const JSONValue& value, WallTime& result);
ValueError readValue(const JSONValue& value, XPCPlayerState& result);
ValueError readValue(const JSONValue& value, XPCPlayerType& result);
ValueError readValue(const JSONValue& value, XPCRepeatMode& result);

// Returns false for a value that JSON cannot represent.
[[nodiscard]] bool writeValue(JSONWriter& writer, bool value);
[[nodiscard]] bool writeValue(JSONWriter& writer, std::int64_t value);
[[nodiscard]] bool writeValue(JSONWriter& writer, double value);
[[nodiscard]] bool writeValue(JSONWriter& writer, const std::string& value);
[[nodiscard]] bool writeValue(JSONWriter& writer, WallTime value);
[[nodiscard]] bool writeValue(JSONWriter& writer, XPCPlayerState value);
[[nodiscard]] bool writeValue(JSONWriter& writer, XPCPlayerType value);
[[nodiscard]] bool writeValue(JSONWriter& writer, XPCRepeatMode value);

// How byte strings are read and written. Replaceable, because artwork that has not changed is
// neither decoded nor encoded again.
using ReadBytes = std::function<std::optional<SharedBytes>(const JSONValue& base64)>;
using WriteBytes = std::function<void(Bytes& text, const SharedBytes& bytes)>;

std::optional<SharedBytes> readBase64(const JSONValue& base64);
void writeBase64(Bytes& text, const SharedBytes& bytes);

}  // namespace quorvane
