#include "platform/linux/bus/BusValues.hpp"

#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

namespace quorvane {
namespace {

constexpr char kVariant[] = "v";
constexpr char kEntry[] = "sv";
// The limit for one message: a player's artwork of 8 MiB in a URL, and the other values.
constexpr std::size_t kMaxMemory = 12 * 1024 * 1024;
constexpr std::size_t kValueMemory = 1024;  // more than any value needs, without its text or bytes

// Takes from the memory that is left. Returns false if that is not enough.
bool take(std::size_t& left, std::size_t size) {
    if (size > left) return false;
    left -= size;
    return true;
}

bool isText(char type) {
    return type == SD_BUS_TYPE_STRING || type == SD_BUS_TYPE_OBJECT_PATH ||
           type == SD_BUS_TYPE_SIGNATURE;
}

// Reads a T from the message and stores it as a Kept.
template <typename T, typename Kept = std::int64_t>
int readBasic(sd_bus_message* message, char type, std::optional<PropertyValue>& value) {
    T read{};
    const int result = sd_bus_message_read_basic(message, type, &read);
    if (result > 0) value = PropertyValue{static_cast<Kept>(read)};
    return result;
}

int readText(sd_bus_message* message, std::size_t& left, char type,
             std::optional<std::string>& text) {
    const char* read = nullptr;
    const int result = sd_bus_message_read_basic(message, type, &read);
    if (result > 0 && take(left, std::strlen(read))) text = read;
    return result;
}

int readNumber(sd_bus_message* message, char type, std::optional<PropertyValue>& value) {
    switch (type) {
        case SD_BUS_TYPE_BOOLEAN: return readBasic<int, bool>(message, type, value);
        case SD_BUS_TYPE_BYTE: return readBasic<std::uint8_t>(message, type, value);
        case SD_BUS_TYPE_INT16: return readBasic<std::int16_t>(message, type, value);
        case SD_BUS_TYPE_UINT16: return readBasic<std::uint16_t>(message, type, value);
        case SD_BUS_TYPE_INT32: return readBasic<std::int32_t>(message, type, value);
        case SD_BUS_TYPE_UINT32: return readBasic<std::uint32_t>(message, type, value);
        case SD_BUS_TYPE_INT64: return readBasic<std::int64_t>(message, type, value);
        case SD_BUS_TYPE_UINT64: {
            const int result = readBasic<std::uint64_t>(message, type, value);
            // Out of range of the property types.
            if (result > 0 && *value->as<std::int64_t>() < 0) value.reset();
            return result;
        }
        case SD_BUS_TYPE_DOUBLE: return readBasic<double, double>(message, type, value);
        default: return sd_bus_message_skip(message, nullptr);
    }
}

// Reads one value of any type; sets none for a value without a counterpart.
int readValue(sd_bus_message* message, std::size_t& left, std::optional<PropertyValue>& value);
int readDictionary(sd_bus_message* message, std::size_t& left, PropertyDictionary& dictionary);

int readArray(sd_bus_message* message, std::size_t& left, const char* contents,
              std::optional<PropertyValue>& value) {
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, contents);
    PropertyArray array;
    while (result >= 0 && (result = sd_bus_message_at_end(message, 0)) == 0) {
        std::optional<PropertyValue> element;
        result = readValue(message, left, element);
        if (element) array.push_back(*std::move(element));
    }
    if (result < 0) return result;
    value = PropertyValue{std::move(array)};
    return sd_bus_message_exit_container(message);
}

int readVariant(sd_bus_message* message, std::size_t& left, const char* contents,
                std::optional<PropertyValue>& value) {
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents);
    if (result >= 0) result = readValue(message, left, value);
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

int readValue(sd_bus_message* message, std::size_t& left, std::optional<PropertyValue>& value) {
    if (!take(left, kValueMemory)) return -EMSGSIZE;
    char type = 0;
    const char* contents = nullptr;
    const int result = sd_bus_message_peek_type(message, &type, &contents);
    if (result <= 0) return result < 0 ? result : -ENXIO;
    if (isText(type)) {
        std::optional<std::string> text;
        const int read = readText(message, left, type, text);
        if (text) value = PropertyValue{*std::move(text)};
        return read;
    }
    const std::string_view inner = contents ? contents : "";
    if (type == SD_BUS_TYPE_VARIANT) return readVariant(message, left, contents, value);
    if (type != SD_BUS_TYPE_ARRAY) return readNumber(message, type, value);
    const bool isDictionary = inner.starts_with('{');
    if (inner == "y" || (isDictionary && !isText(inner[1])))
        return sd_bus_message_skip(message, nullptr);
    if (!isDictionary) return readArray(message, left, contents, value);
    PropertyDictionary dictionary;
    const int read = readDictionary(message, left, dictionary);
    if (read >= 0) value = PropertyValue{std::move(dictionary)};
    return read;
}

int readDictionary(sd_bus_message* message, std::size_t& left, PropertyDictionary& dictionary) {
    int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, nullptr);
    while (result >= 0 && (result = sd_bus_message_at_end(message, 0)) == 0) {
        const char* contents = nullptr;
        char keyType = 0;
        std::optional<std::string> key;
        std::optional<PropertyValue> value;
        result = sd_bus_message_peek_type(message, nullptr, &contents);
        if (result > 0) {
            if (!contents || !isText(contents[0])) return -EBADMSG;
            keyType = contents[0];
            result = sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, contents);
        }
        if (result >= 0) result = readText(message, left, keyType, key);
        if (result >= 0) result = readValue(message, left, value);
        if (result >= 0) result = sd_bus_message_exit_container(message);
        if (result >= 0 && key && value)
            dictionary.insert_or_assign(*std::move(key), *std::move(value));
    }
    return result < 0 ? result : sd_bus_message_exit_container(message);
}

int appendText(sd_bus_message* message, const std::string& text) {
    if (text.find('\0') != std::string::npos) return -EINVAL;
    return sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING, text.c_str());
}

// Appends the value itself inside an open variant.
struct AppendValue {
    sd_bus_message* message;

    int operator()(bool flag) const { return sd_bus_message_append(message, "b", int{flag}); }
    int operator()(std::int64_t number) const {
        return sd_bus_message_append_basic(message, SD_BUS_TYPE_INT64, &number);
    }
    int operator()(double number) const {
        return sd_bus_message_append_basic(message, SD_BUS_TYPE_DOUBLE, &number);
    }
    int operator()(const std::string& text) const { return appendText(message, text); }
    int operator()(WallTime) const { return -EINVAL; }
    int operator()(const Bytes&) const { return -EINVAL; }
    int operator()(const PropertyArray& array) const {
        int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, kVariant);
        for (const PropertyValue& element : array) {
            if (result < 0) return result;
            result = appendBusVariant(message, element);
        }
        return result < 0 ? result : sd_bus_message_close_container(message);
    }
    int operator()(const PropertyDictionary& dictionary) const {
        return appendBusDictionary(message, dictionary);
    }
};

// By the type's index; "" for those that no message carries.
constexpr const char* kVariantContents[] = {"b", "x", "d", "s", "", "", "av", "a{sv}"};
static_assert(std::size(kVariantContents) == std::variant_size_v<PropertyValue::Storage>);

}  // namespace

int readBusDictionary(sd_bus_message* message, PropertyDictionary& dictionary) {
    std::size_t left = kMaxMemory;
    return readDictionary(message, left, dictionary);
}

int appendBusVariant(sd_bus_message* message, const PropertyValue& value) {
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_VARIANT,
                                               kVariantContents[value.value.index()]);
    if (result >= 0) result = std::visit(AppendValue{message}, value.value);
    return result < 0 ? result : sd_bus_message_close_container(message);
}

int appendBusDictionary(sd_bus_message* message, const PropertyDictionary& dictionary) {
    int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
    for (const auto& [key, value] : dictionary) {
        if (result >= 0)
            result = sd_bus_message_open_container(message, SD_BUS_TYPE_DICT_ENTRY, kEntry);
        if (result >= 0) result = appendText(message, key);
        if (result >= 0) result = appendBusVariant(message, value);
        if (result >= 0) result = sd_bus_message_close_container(message);
    }
    return result < 0 ? result : sd_bus_message_close_container(message);
}

}  // namespace quorvane
