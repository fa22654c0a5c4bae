// Reader of a hand-written JSON object's fields: reports every misspelt key, wrong type and value
// out of range with its place.
#pragma once

#include <rapidjson/document.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace quorvane {

// The first complaint of several readers.
struct JSONComplaint {
    std::string text;  // empty: no complaint

    void add(const std::string& place, const std::string& reason);
};

// A field that is absent or invalid reads as nullopt or null; an invalid one adds a complaint. The
// value and the complaint must outlive this object.
class JSONFields {
public:
    // `place` is the object's own key path, "" for the root.
    JSONFields(const rapidjson::Value& object, std::string place, JSONComplaint& complaint);

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
    const rapidjson::Value* object(const char* key);
    const rapidjson::Value* array(const char* key);
    // Complains about keys that no call above has requested. Call last.
    void refuseOthers();

    std::string place(std::string_view key) const;
    void complain(std::string_view key, const std::string& reason);

private:
    const rapidjson::Value* take(const char* key);

    const rapidjson::Value& object_;
    std::string place_;
    JSONComplaint& complaint_;
    std::set<std::string_view> taken_;
};

}  // namespace quorvane
