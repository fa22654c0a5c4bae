#include "host/players/JSONFields.hpp"

#include <cmath>

namespace quorvane {

namespace {

std::string_view textOfValue(const rapidjson::Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

std::string plain(double value) {
    std::string text = std::to_string(value);
    while (text.ends_with('0')) text.pop_back();
    if (text.ends_with('.')) text.pop_back();
    return text;
}

bool isBetween(const rapidjson::Value& value, double lowest, double highest) {
    return value.IsNumber() && value.GetDouble() >= lowest && value.GetDouble() <= highest;
}

}  // namespace

const rapidjson::Value* JSONFields::take(const char* key,
                                         const std::function<bool(const Value&)>& isRight,
                                         const std::string& requirement) {
    taken_.insert(key);
    const auto member = object_.FindMember(key);
    if (member == object_.MemberEnd()) return nullptr;
    if (isRight(member->value)) return &member->value;
    complain(key, "must be " + requirement);
    return nullptr;
}

std::optional<std::string> JSONFields::text(const char* key) {
    const Value* value = take(key, &Value::IsString, "a text");
    return value ? std::optional{std::string{textOfValue(*value)}} : std::nullopt;
}

std::optional<std::string> JSONFields::requiredText(const char* key) {
    auto value = text(key);
    if (!value) complain(key, "is missing");
    return value;
}

std::optional<bool> JSONFields::flag(const char* key) {
    const Value* value = take(key, &Value::IsBool, "true or false");
    return value ? std::optional{value->GetBool()} : std::nullopt;
}

std::optional<double> JSONFields::number(const char* key, double lowest, double highest) {
    const auto isRight = [&](const Value& value) { return isBetween(value, lowest, highest); };
    const Value* value =
        take(key, isRight, "a number from " + plain(lowest) + " to " + plain(highest));
    return value ? std::optional{value->GetDouble()} : std::nullopt;
}

std::optional<std::int64_t> JSONFields::integer(const char* key, std::int64_t lowest,
                                                std::int64_t highest) {
    const auto isRight = [&](const Value& value) {
        return isBetween(value, static_cast<double>(lowest), static_cast<double>(highest)) &&
               value.GetDouble() == std::floor(value.GetDouble());
    };
    const Value* value =
        take(key, isRight,
             "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
    return value ? std::optional{static_cast<std::int64_t>(value->GetDouble())} : std::nullopt;
}

const rapidjson::Value* JSONFields::object(const char* key) {
    return take(key, &Value::IsObject, "an object");
}

const rapidjson::Value* JSONFields::array(const char* key) {
    return take(key, &Value::IsArray, "a list");
}

void JSONFields::refuseOthers() {
    for (const auto& member : object_.GetObject())
        if (!taken_.contains(textOfValue(member.name)))
            complain(textOfValue(member.name), "is not a known key");
}

void JSONFields::complain(std::string_view key, const std::string& reason) {
    if (!complaint_.empty()) return;
    complaint_ = (place_.empty() ? "" : place_ + ".") + std::string{key} + ": " + reason;
}

}  // namespace quorvane
