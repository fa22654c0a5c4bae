#include "platform/linux/files/PropertyListSafety.hpp"

#include <cstdint>
#include <optional>

namespace quorvane {
namespace {

constexpr std::string_view kBinaryStart = "bplist00";
constexpr std::size_t kTrailerSize = 32;

// Walks the objects of a binary list. Checks every range before reading it.
class BinaryWalk {
public:
    explicit BinaryWalk(ByteView contents) : contents_(contents) {}

    bool isSafe() {
        if (contents_.size() < kBinaryStart.size() + kTrailerSize) return false;
        const std::size_t trailer = contents_.size() - kTrailerSize;
        offsetSize_ = *number(trailer + 6, 1);
        referenceSize_ = *number(trailer + 7, 1);
        objects_ = *number(trailer + 8, 8);
        table_ = *number(trailer + 24, 8);
        const auto top = *number(trailer + 16, 8);
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8)
            return false;
        return objects_ <= contents_.size() && table_ <= trailer && visit(top, 0);
    }

private:
    std::optional<std::uint64_t> number(std::uint64_t place, std::uint64_t size) const {
        if (place > contents_.size() || size > contents_.size() - place) return std::nullopt;
        std::uint64_t value = 0;
        for (const std::byte digit : contents_.subspan(place, size))
            value = value << 8 | std::to_integer<std::uint64_t>(digit);
        return value;
    }

    // The count of a text's units or a container's values at `place`. Moves `place` behind the
    // count.
    std::optional<std::uint64_t> count(std::uint64_t& place, std::uint64_t marker) const {
        ++place;
        if ((marker & 0xF) != 0xF) return marker & 0xF;
        const auto sizeMarker = number(place, 1);
        if (!sizeMarker || (*sizeMarker >> 4) != 1 || (*sizeMarker & 0xF) > 3) return std::nullopt;
        const std::uint64_t size = std::uint64_t{1} << (*sizeMarker & 0xF);
        const auto value = number(place + 1, size);
        place += 1 + size;
        return value;
    }

    bool visit(std::uint64_t object, int depth) {
        if (++visited_ > kMaxListValues || depth > kDeepestList || object >= objects_) return false;
        const auto place = number(table_ + object * offsetSize_, offsetSize_);
        const auto marker = place ? number(*place, 1) : std::nullopt;
        if (!marker) return false;
        switch (*marker >> 4) {
            case 0x5: return isText(*place, *marker, 1);
            case 0x6: return isText(*place, *marker, 2);
            case 0xA:
            case 0xB:
            case 0xC: return visitAll(*place, *marker, 1, depth);
            case 0xD: return visitAll(*place, *marker, 2, depth);  // the keys, then the values
            default: return true;
        }
    }

    bool isText(std::uint64_t place, std::uint64_t marker, std::uint64_t unitSize) const {
        const auto units = count(place, marker);
        if (!units || *units > contents_.size()) return false;
        for (std::uint64_t unit = 0; unit < *units; ++unit)
            if (number(place + unit * unitSize, unitSize).value_or(0) == 0) return false;
        return true;
    }

    bool visitAll(std::uint64_t place, std::uint64_t marker, std::uint64_t each, int depth) {
        const auto values = count(place, marker);
        if (!values || *values > kMaxListValues) return false;
        for (std::uint64_t index = 0; index < *values * each; ++index) {
            const auto next = number(place + index * referenceSize_, referenceSize_);
            if (!next || !visit(*next, depth + 1)) return false;
        }
        return true;
    }

    ByteView contents_;
    std::uint64_t offsetSize_ = 0, referenceSize_ = 0, objects_ = 0, table_ = 0;
    std::size_t visited_ = 0;
};

}  // namespace

bool isBinaryList(ByteView contents) { return textOf(contents).starts_with(kBinaryStart); }

bool binaryListIsSafe(ByteView contents) { return BinaryWalk{contents}.isSafe(); }

bool xmlListIsSafe(ByteView contents) {
    const std::string_view text = textOf(contents);
    if (text.find('\0') != text.npos) return false;
    std::size_t values = 0;
    for (auto place = text.find('<'); place != text.npos; place = text.find('<', place + 1)) {
        const std::string_view tag = text.substr(place + 1);
        const bool isValue = !tag.starts_with('/') && !tag.starts_with('!');
        // Depth is not checked, because closing tags in comments would falsify it. This many
        // containers are harmless even when fully nested.
        if (isValue && ++values > kMaxListValues) return false;
    }
    return true;
}

}  // namespace quorvane
