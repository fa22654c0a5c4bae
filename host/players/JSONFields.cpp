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

}  // namespace

void JSONComplaint::add(const std::string& place, const std::string& reason) {
    if (text.empty()) text = place.empty() ? reason : place + ": " + reason;
}

JSONFields::JSONFields(const rapidjson::Value& object, std::string place, JSONComplaint& complaint)
    : object_(object), place_(std::move(place)), complaint_(complaint) {
    std::set<std::string_view> seen;
    for (const auto& member : object_.GetObject())
        if (!seen.insert(textOfValue(member.name)).second)
            complain(textOfValue(member.name), "is there twice");
}

const rapidjson::Value* JSONFields::take(const char* key) {
    taken_.insert(key);
    const auto member = object_.FindMember(key);
    return member == object_.MemberEnd() ? nullptr : &member->value;
}

std::optional<std::string> JSONFields::text(const char* key) {
    const rapidjson::Value* value = take(key);
    if (!value) return std::nullopt;
    if (value->IsString()) return std::string{textOfValue(*value)};
    complain(key, "must be a text");
    return std::nullopt;
}

std::optional<std::string> JSONFields::requiredText(const char* key) {
    auto value = text(key);
    if (!value) complain(key, "is missing");
    return value;
}

std::optional<bool> JSONFields::flag(const char* key) {
    const rapidjson::Value* value = take(key);
    if (!value) return std::nullopt;
    if (value->IsBool()) return value->GetBool();
    complain(key, "must be true or false");
    return std::nullopt;
}

std::optional<double> JSONFields::number(const char* key, double lowest, double highest) {
    const rapidjson::Value* value = take(key);
    if (!value) return std::nullopt;
    if (value->IsNumber() && value->GetDouble() >= lowest && value->GetDouble() <= highest)
        return value->GetDouble();
    complain(key, "must be a number from " + plain(lowest) + " to " + plain(highest));
    return std::nullopt;
}

std::optional<std::int64_t> JSONFields::integer(const char* key, std::int64_t lowest,
                                                std::int64_t highest) {
    const rapidjson::Value* value = take(key);
    if (!value) return std::nullopt;
    if (value->IsNumber()) {
        const double number = value->GetDouble();
        if (number >= static_cast<double>(lowest) && number <= static_cast<double>(highest) &&
            number == std::floor(number))
            return static_cast<std::int64_t>(number);
    }
    complain(key, "must be a whole number from " + std::to_string(lowest) + " to " +
                      std::to_string(highest));
    return std::nullopt;
}

const rapidjson::Value* JSONFields::object(const char* key) {
    const rapidjson::Value* value = take(key);
    if (!value || value->IsObject()) return value;
    complain(key, "must be an object");
    return nullptr;
}

const rapidjson::Value* JSONFields::array(const char* key) {
    const rapidjson::Value* value = take(key);
    if (!value || value->IsArray()) return value;
    complain(key, "must be a list");
    return nullptr;
}

void JSONFields::refuseOthers() {
    for (const auto& member : object_.GetObject())
        if (!taken_.contains(textOfValue(member.name)))
            complain(textOfValue(member.name), "is not a known key");
}

std::string JSONFields::place(std::string_view key) const {
    return place_.empty() ? std::string{key} : place_ + "." + std::string{key};
}

void JSONFields::complain(std::string_view key, const std::string& reason) {
    complaint_.add(place(key), reason);
}

}  // namespace quorvane
