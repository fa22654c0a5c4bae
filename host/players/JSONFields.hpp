// Reader of a hand-written JSON object's fields: reports every misspelt key, wrong type and value
// out of range with its place.
#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace quorvane {

// A field that is absent or invalid reads as nullopt or null; an invalid one adds a complaint.
class JSONFields {
public:
    using Value = rapidjson::Value;

    // `place` is the object's own key path, "" for the root. Several readers share one complaint,
    // which keeps the first error; empty means none. The value and the complaint must outlive this
    // object.
    JSONFields(const Value& object, std::string place, std::string& complaint)
        : object_(object), place_(std::move(place)), complaint_(complaint) {}

    std::optional<std::string> text(const char* key);
    std::optional<std::string> requiredText(const char* key);
    std::optional<bool> flag(const char* key);
    std::optional<double> number(const char* key, double lowest, double highest);
    std::optional<std::int64_t> integer(const char* key, std::int64_t lowest, std::int64_t highest);
    // One of the words of `rows`.
    template <typename T, std::size_t count>
    std::optional<T> choice(const char* key, const std::pair<std::string_view, T> (&rows)[count]) {
        const auto word = text(key);
        if (!word) return std::nullopt;
        std::string words;
        for (const auto& [name, value] : rows) {
            if (name == *word) return value;
            words += (words.empty() ? "\"" : ", \"") + std::string{name} + "\"";
        }
        complain(key, "must be one of " + words);
        return std::nullopt;
    }
    const Value* object(const char* key);
    const Value* array(const char* key);
    // Complains about keys that no call above has requested. Call last.
    void refuseOthers();

    void complain(std::string_view key, const std::string& reason);

private:
    const Value* take(const char* key, const std::function<bool(const Value&)>& isRight,
                      const std::string& requirement);

    const Value& object_;
    std::string place_;
    std::string& complaint_;
    std::set<std::string_view> taken_;
};

}  // namespace quorvane
