#include "drawing/pictures/PictureHeader.hpp"

#include <cstdlib>
#include <string_view>

namespace quorvane {
namespace {

enum class Order { bigEndian, littleEndian };

// Numbers at offsets of a header. Reading beyond the end returns nullopt, and so does anything
// computed from it.
class Header {
public:
    explicit Header(ByteView bytes) : bytes_(bytes) {}

    std::size_t size() const { return bytes_.size(); }
    bool hasText(std::size_t place, std::string_view text) const {
        return place <= bytes_.size() && textOf(bytes_.subspan(place)).starts_with(text);
    }
    std::optional<std::uint32_t> number(std::size_t place, std::size_t length, Order order) const {
        if (place > bytes_.size() || bytes_.size() - place < length) return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < length; ++i) {
            const std::size_t at = order == Order::bigEndian ? i : length - 1 - i;
            value = value << 8 | std::to_integer<std::uint32_t>(bytes_[place + at]);
        }
        return value;
    }

private:
    ByteView bytes_;
};

std::optional<PictureSize> sizeOf(std::optional<std::uint32_t> width,
                                  std::optional<std::uint32_t> height) {
    if (!width || !height) return std::nullopt;
    return PictureSize{*width, *height};
}

// The first chunk must be the header.
std::optional<PictureSize> readPNG(const Header& header) {
    if (!header.hasText(12, "IHDR")) return std::nullopt;
    return sizeOf(header.number(16, 4, Order::bigEndian), header.number(20, 4, Order::bigEndian));
}

std::optional<PictureSize> readGIF(const Header& header) {
    return sizeOf(header.number(6, 2, Order::littleEndian),
                  header.number(8, 2, Order::littleEndian));
}

std::optional<PictureSize> readBMP(const Header& header) {
    constexpr std::uint32_t kOldestHeader = 12;  // with sizes of 16 bits
    if (header.number(14, 4, Order::littleEndian) == kOldestHeader)
        return sizeOf(header.number(18, 2, Order::littleEndian),
                      header.number(20, 2, Order::littleEndian));
    const auto height = header.number(22, 4, Order::littleEndian);
    if (!height) return std::nullopt;
    // Negative where the rows go from top to bottom.
    const auto rows = std::llabs(static_cast<std::int64_t>(static_cast<std::int32_t>(*height)));
    return sizeOf(header.number(18, 4, Order::littleEndian), static_cast<std::uint32_t>(rows));
}

bool isStartOfFrame(std::uint32_t marker) {
    // 0xC4, 0xC8 and 0xCC lie in this range but are not frames.
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// A JPEG is a sequence of segments with lengths; the start of frame contains the size.
std::optional<PictureSize> readJPEG(const Header& header) {
    std::size_t place = 2;
    while (place < header.size()) {
        const auto marker = header.number(place, 2, Order::bigEndian);
        if (!marker || *marker < 0xFF00) return std::nullopt;
        const std::uint32_t kind = *marker & 0xFF;
        if (kind == 0xFF) {  // fill byte
            ++place;
            continue;
        }
        const bool isAlone = kind == 0x01 || (kind >= 0xD0 && kind <= 0xD8);
        const auto length = isAlone ? 0 : header.number(place + 2, 2, Order::bigEndian);
        if (!length || (!isAlone && *length < 2)) return std::nullopt;
        if (isStartOfFrame(kind))
            return sizeOf(header.number(place + 7, 2, Order::bigEndian),
                          header.number(place + 5, 2, Order::bigEndian));
        // The picture data begins, or the file ends, before a size was found.
        if (kind == 0xDA || kind == 0xD9) return std::nullopt;
        place += 2 + *length;
    }
    return std::nullopt;
}

std::optional<PictureSize> readWebP(const Header& header) {
    constexpr std::uint32_t kLow14 = 0x3FFF;
    const auto plusOne = [](std::optional<std::uint32_t> value) {
        return value ? std::optional{*value + 1} : std::nullopt;
    };
    if (header.hasText(12, "VP8X"))
        return sizeOf(plusOne(header.number(24, 3, Order::littleEndian)),
                      plusOne(header.number(27, 3, Order::littleEndian)));
    if (header.hasText(12, "VP8L")) {
        const auto both = header.number(21, 4, Order::littleEndian);
        if (!both || header.number(20, 1, Order::littleEndian) != 0x2F) return std::nullopt;
        return PictureSize{(*both & kLow14) + 1, (*both >> 14 & kLow14) + 1};
    }
    if (!header.hasText(12, "VP8 ") || !header.hasText(23, "\x9D\x01\x2A")) return std::nullopt;
    const auto width = header.number(26, 2, Order::littleEndian);
    const auto height = header.number(28, 2, Order::littleEndian);
    if (!width || !height) return std::nullopt;
    return PictureSize{*width & kLow14, *height & kLow14};  // the upper bits are a scale
}

struct Format {
    const char* mediaType;
    std::optional<PictureSize> (*readSize)(const Header&);
};

std::optional<Format> formatOf(const Header& header) {
    if (header.hasText(0, "\x89PNG\r\n\x1A\n")) return Format{"image/png", readPNG};
    if (header.hasText(0, "\xFF\xD8\xFF")) return Format{"image/jpeg", readJPEG};
    if (header.hasText(0, "GIF87a") || header.hasText(0, "GIF89a"))
        return Format{"image/gif", readGIF};
    if (header.hasText(0, "RIFF") && header.hasText(8, "WEBP"))
        return Format{"image/webp", readWebP};
    if (header.hasText(0, "BM")) return Format{"image/bmp", readBMP};
    return std::nullopt;
}

}  // namespace

std::optional<PictureSize> readPictureSize(ByteView encoded) {
    const Header header{encoded};
    const auto format = formatOf(header);
    return format ? format->readSize(header) : std::nullopt;
}

const char* readPictureType(ByteView encoded) {
    const auto format = formatOf(Header{encoded});
    return format ? format->mediaType : nullptr;
}

}  // namespace quorvane
