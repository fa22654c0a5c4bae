#include "platform/linux/language/MessageCatalogue.hpp"

#include <cstdint>
#include <cstring>

namespace quorvane {
namespace {

constexpr std::uint32_t kMagic = 0x950412de;

// Offsets of the header's numbers in the file.
constexpr std::size_t kRevisionPlace = 4;
constexpr std::size_t kCountPlace = 8;
constexpr std::size_t kKeysPlace = 12;   // offset of the table of keys
constexpr std::size_t kTextsPlace = 16;  // offset of the table of texts
constexpr std::size_t kEntrySize = 8;    // in both tables: the text's length and offset

std::optional<std::uint32_t> numberAt(ByteView file, std::size_t place) {
    std::uint32_t number = 0;
    if (place > file.size() || file.size() - place < sizeof number) return std::nullopt;
    std::memcpy(&number, file.data() + place, sizeof number);
    return number;
}

std::optional<std::string_view> textAt(ByteView file, std::size_t entry) {
    const auto length = numberAt(file, entry);
    const auto begin = numberAt(file, entry + sizeof(std::uint32_t));
    if (!length || !begin || *begin > file.size() || *length > file.size() - *begin)
        return std::nullopt;
    return textOf(file.subspan(*begin, *length));
}

}  // namespace

std::optional<MessageCatalogue> MessageCatalogue::parse(ByteView file) {
    const auto revision = numberAt(file, kRevisionPlace);
    const auto count = numberAt(file, kCountPlace);
    const auto keys = numberAt(file, kKeysPlace);
    const auto texts = numberAt(file, kTextsPlace);
    // A higher major revision (upper half) has another format.
    if (numberAt(file, 0) != kMagic || !texts || *revision >> 16 > 1) return std::nullopt;
    MessageCatalogue catalogue;
    for (std::size_t i = 0; i < *count; ++i) {
        const auto key = textAt(file, *keys + i * kEntrySize);
        const auto text = textAt(file, *texts + i * kEntrySize);
        if (!key || !text) return std::nullopt;
        // The empty key's text describes the catalogue itself.
        if (!key->empty() && !text->empty()) catalogue.texts_.emplace(*key, *text);
    }
    return catalogue;
}

const std::string* MessageCatalogue::find(std::string_view key) const {
    const auto found = texts_.find(key);
    return found == texts_.end() ? nullptr : &found->second;
}

}  // namespace quorvane
