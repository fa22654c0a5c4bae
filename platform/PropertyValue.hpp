// The value types of property lists, user defaults and notices.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <variant>
#include <vector>

#include "platform/Bytes.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

struct PropertyValue;
using PropertyArray = std::vector<PropertyValue>;
using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

// The type matters: an integer 1 is not the boolean true.
struct PropertyValue {
    using Storage = std::variant<bool, std::int64_t, double, std::string, WallTime, Bytes,
                                 PropertyArray, PropertyDictionary>;
    Storage value;

    template <typename T>
    const T* as() const {
        return std::get_if<T>(&value);
    }
    bool operator==(const PropertyValue& other) const { return value == other.value; }
};

// The value under `key` if it exists and is of type T, else null.
template <typename T>
const T* find(const PropertyDictionary& dictionary, std::string_view key) {
    const auto entry = dictionary.find(key);
    return entry == dictionary.end() ? nullptr : entry->second.as<T>();
}

}  // namespace quorvane
