// User defaults in memory, whose state tests can read and change.
#pragma once

#include "platform/UserDefaults.hpp"

namespace quorvane {

struct MemoryDefaults {
    PropertyDictionary values;
    int synchronizations = 0;
    bool refuses = false;  // to synchronize

    UserDefaults table() {
        return {.get = [this](const std::string& key) -> std::optional<PropertyValue> {
                    if (!values.contains(key)) return std::nullopt;
                    return values.at(key);
                },
                .getTogether =
                    [this](const std::vector<std::string>& keys) {
                        PropertyDictionary found;
                        for (const std::string& key : keys)
                            if (const auto entry = values.find(key); entry != values.end())
                                found.insert(*entry);
                        return found;
                    },
                .set =
                    [this](const std::string& key, std::optional<PropertyValue> value) {
                        values.erase(key);
                        if (value) values.emplace(key, *std::move(value));
                    },
                .removeDomain = [this] { values.clear(); },
                .synchronize = [this]() -> Result<void> {
                    ++synchronizations;
                    if (!refuses) return {};
                    return std::unexpected{PlatformError{.code = 28, .description = "full"}};
                }};
    }
};

}  // namespace quorvane
