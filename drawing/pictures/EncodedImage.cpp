#include "drawing/pictures/EncodedImage.hpp"

#include <string_view>

#include "drawing/pictures/PictureLimits.hpp"

namespace quorvane {
namespace {

// The first chunk states the size.
bool isDecodableWebP(ByteView encoded) {
    constexpr std::size_t kLongestHeader = 30;
    constexpr std::uint32_t kLow14 = 0x3FFF;
    if (encoded.size() < kLongestHeader) return false;
    const auto number = [&](std::size_t place, std::size_t length) {
        std::uint32_t value = 0;
        for (std::size_t i = length; i-- > 0;)
            value = value << 8 | std::to_integer<std::uint32_t>(encoded[place + i]);
        return value;
    };
    const std::string_view chunk = textOf(encoded.subspan(12, 4));
    if (chunk == "VP8X") return isDecodable({number(24, 3) + 1, number(27, 3) + 1});
    if (chunk == "VP8L")
        return isDecodable({(number(21, 4) & kLow14) + 1, (number(21, 4) >> 14 & kLow14) + 1});
    // The upper bits are a scale.
    return chunk == "VP8 " && isDecodable({number(26, 2) & kLow14, number(28, 2) & kLow14});
}

}  // namespace

const char* pictureType(ByteView encoded) {
    const std::string_view text = textOf(encoded);
    if (text.starts_with("\x89PNG\r\n\x1A\n")) return "image/png";
    if (text.starts_with("\xFF\xD8\xFF")) return "image/jpeg";
    if (text.starts_with("GIF87a") || text.starts_with("GIF89a")) return "image/gif";
    if (text.starts_with("RIFF") && text.size() >= 12 && text.substr(8).starts_with("WEBP"))
        return isDecodableWebP(encoded) ? "image/webp" : nullptr;
    if (text.starts_with("BM")) return "image/bmp";
    return nullptr;
}

}  // namespace quorvane
