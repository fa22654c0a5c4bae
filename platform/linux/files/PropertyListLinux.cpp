#include "platform/linux/files/PropertyListLinux.hpp"

#include <plist/plist.h>

#include <cstdlib>
#include <limits>
#include <memory>

#include "platform/ReleaseWith.hpp"
#include "platform/linux/files/OldStylePropertyList.hpp"
#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/files/PropertyListSafety.hpp"

// Newer versions of the library rename the date functions, but the oldest supported version lacks
// the new names.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace quorvane {
namespace {

using Node = std::unique_ptr<void, ReleaseWith<plist_free>>;
using Iterator = std::unique_ptr<void, ReleaseWith<std::free>>;
using Text = std::unique_ptr<char, ReleaseWith<std::free>>;

// The library's dates count from 2001.
constexpr WallTime kReferenceDate{std::chrono::seconds{978'307'200}};

std::unexpected<PlatformError> malformed(const char* why) { return posixError(why, EINVAL); }

// The read functions fill a value in place.
using Storage = PropertyValue::Storage;

Result<void> readNode(plist_t node, int depth, Storage& value);

Result<void> readArray(plist_t node, int depth, PropertyArray& array) {
    plist_array_iter place = nullptr;
    plist_array_new_iter(node, &place);
    const Iterator owner{place};
    plist_t item = nullptr;
    for (plist_array_next_item(node, place, &item); item;
         plist_array_next_item(node, place, &item)) {
        if (auto read = readNode(item, depth + 1, array.emplace_back().value); !read) return read;
    }
    return {};
}

Result<void> readDictionary(plist_t node, int depth, PropertyDictionary& dictionary) {
    plist_dict_iter place = nullptr;
    plist_dict_new_iter(node, &place);
    const Iterator owner{place};
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(node, place, &key, &item);
        const Text ownedKey{key};
        if (!key || !item) return {};
        if (auto read = readNode(item, depth + 1, dictionary[key].value); !read) return read;
    }
}

WallTime dateOf(plist_t node) {
    std::int32_t seconds = 0;
    std::int32_t microseconds = 0;
    plist_get_date_val(node, &seconds, &microseconds);
    return kReferenceDate + std::chrono::seconds{seconds} + std::chrono::microseconds{microseconds};
}

Bytes dataOf(plist_t node) {
    char* data = nullptr;
    std::uint64_t size = 0;
    plist_get_data_val(node, &data, &size);
    const Text owner{data};
    return copyOf(bytesOf({data, data ? size : 0}));
}

std::string stringOf(plist_t node) {
    char* text = nullptr;
    plist_get_string_val(node, &text);
    const Text owner{text};
    return text ? text : "";
}

Result<void> readNode(plist_t node, int depth, Storage& value) {
    if (depth > kDeepestList) return malformed("property list nests too deep");
    std::uint8_t flag = 0;
    std::uint64_t number = 0;
    switch (plist_get_node_type(node)) {
        case PLIST_ARRAY: return readArray(node, depth, value.emplace<PropertyArray>());
        case PLIST_DICT: return readDictionary(node, depth, value.emplace<PropertyDictionary>());
        case PLIST_BOOLEAN:
            plist_get_bool_val(node, &flag);
            value.emplace<bool>(flag != 0);
            return {};
        case PLIST_UINT:
            plist_get_uint_val(node, &number);
            value.emplace<std::int64_t>(static_cast<std::int64_t>(number));
            return {};
        case PLIST_REAL: plist_get_real_val(node, &value.emplace<double>()); return {};
        case PLIST_STRING: value.emplace<std::string>(stringOf(node)); return {};
        case PLIST_DATE: value.emplace<WallTime>(dateOf(node)); return {};
        case PLIST_DATA: value.emplace<Bytes>(dataOf(node)); return {};
        default: return malformed("property list of an unknown type");
    }
}

// Newer versions of the library write a `plist_new_uint` number as unsigned and add a function for
// signed numbers; older versions write it as signed. This is a template so that a missing name is
// not an error.
template <typename Integer>
plist_t integerNode(Integer number) {
    if constexpr (requires { plist_new_int(number); })
        return plist_new_int(number);
    else
        return plist_new_uint(static_cast<std::uint64_t>(number));
}

Result<Node> nodeOf(const PropertyValue& value);

struct MakeNode {
    Result<Node> operator()(bool flag) const { return Node{plist_new_bool(flag)}; }
    Result<Node> operator()(std::int64_t number) const { return Node{integerNode(number)}; }
    Result<Node> operator()(double real) const { return Node{plist_new_real(real)}; }
    Result<Node> operator()(const std::string& text) const {
        if (text.find('\0') != text.npos) return malformed("text with a NUL");
        return Node{plist_new_string(text.c_str())};
    }
    Result<Node> operator()(WallTime date) const {
        using Limits = std::numeric_limits<std::int32_t>;
        const auto seconds =
            std::chrono::floor<std::chrono::seconds>(date - kReferenceDate).count();
        if (seconds < Limits::min() || seconds > Limits::max())
            return posixError("date", EOVERFLOW);
        return Node{plist_new_date(static_cast<std::int32_t>(seconds), 0)};
    }
    Result<Node> operator()(const Bytes& data) const {
        return Node{plist_new_data(textOf(data).data(), data.size())};
    }
    Result<Node> operator()(const PropertyArray& array) const {
        Node node{plist_new_array()};
        for (const PropertyValue& element : array) {
            auto item = nodeOf(element);
            if (!item) return item;
            plist_array_append_item(node.get(), item->release());
        }
        return node;
    }
    Result<Node> operator()(const PropertyDictionary& dictionary) const {
        Node node{plist_new_dict()};
        for (const auto& [key, element] : dictionary) {
            if (key.find('\0') != key.npos) return malformed("key with a NUL");
            auto item = nodeOf(element);
            if (!item) return item;
            plist_dict_set_item(node.get(), key.c_str(), item->release());
        }
        return node;
    }
};

Result<Node> nodeOf(const PropertyValue& value) { return std::visit(MakeNode{}, value.value); }

}  // namespace

Result<PropertyValue> parsePropertyList(ByteView contents) {
    if (contents.size() > std::numeric_limits<std::int32_t>::max())
        return malformed("property list too large");
    if (isOldStyleList(contents)) return parseOldStyleList(contents);
    const auto size = static_cast<std::uint32_t>(contents.size());
    const char* text = textOf(contents).data();
    plist_t parsed = nullptr;
    if (isBinaryList(contents)) {
        if (!binaryListIsSafe(contents)) return malformed("malformed binary property list");
        plist_from_bin(text, size, &parsed);
    } else {
        if (!xmlListIsSafe(contents))
            return malformed("property list with a NUL or too many values");
        plist_from_xml(text, size, &parsed);
    }
    const Node node{parsed};
    if (!node) return malformed("malformed property list");
    Result<PropertyValue> value{std::in_place};
    if (auto read = readNode(node.get(), 0, value->value); !read)
        return std::unexpected{std::move(read).error()};
    return value;
}

Result<Bytes> xmlPropertyList(const PropertyValue& value) {
    const auto node = nodeOf(value);
    if (!node) return std::unexpected{node.error()};
    char* text = nullptr;
    std::uint32_t size = 0;
    plist_to_xml(node->get(), &text, &size);
    const Text owner{text};
    if (!text) return malformed("property list not written");
    return copyOf(bytesOf({text, size}));
}

}  // namespace quorvane
