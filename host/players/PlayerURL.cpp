#include "host/players/PlayerURL.hpp"

#include <charconv>

#include "QuorvaneKit/json/Base64.hpp"
#include "platform/FetchPicture.hpp"

namespace quorvane {

bool isWebURL(std::string_view url) {
    return url.starts_with("https://") || url.starts_with("http://");
}

bool isDataURL(std::string_view url) { return url.starts_with("data:"); }

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char byte = text[i];
        if (byte == '%') {
            const std::string_view digits = text.substr(i + 1, 2);
            unsigned value = 0;
            const auto [end, error] =
                std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
            if (digits.size() != 2 || error != std::errc{} || end != digits.data() + 2)
                return std::nullopt;
            byte = static_cast<char>(value);
            i += 2;
        }
        decoded.push_back(byte);
    }
    return decoded;
}

std::optional<std::filesystem::path> localFile(std::string_view url) {
    // No path is longer: 4096 bytes, all of them escaped.
    constexpr std::size_t longest = std::size_t{3} * 4096 + 64;
    if (url.size() > longest) return std::nullopt;
    if (url.starts_with('/')) return std::filesystem::path{url};
    constexpr std::string_view scheme = "file:";
    if (!url.starts_with(scheme)) return std::nullopt;
    std::string_view rest = url.substr(scheme.size());
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        constexpr std::string_view thisMachine = "localhost/";
        if (rest.starts_with(thisMachine)) rest.remove_prefix(thisMachine.size() - 1);
    }
    // A path writes its own '?' and '#' as escapes; unescaped ones end it.
    rest = rest.substr(0, rest.find_first_of("?#"));
    if (!rest.starts_with('/')) return std::nullopt;
    const auto path = percentDecoded(rest);
    if (!path || path->find('\0') != std::string::npos) return std::nullopt;
    return std::filesystem::path{*path};
}

std::expected<Bytes, std::string_view> dataOf(std::string_view url) {
    const std::size_t comma = url.find(',');
    if (comma == std::string_view::npos || comma + 1 == url.size())
        return std::unexpected{"the data: URL has no data"};
    const bool isBase64 = url.substr(0, comma).ends_with(";base64");
    std::string_view data = url.substr(comma + 1);
    std::optional<std::string> unescaped;
    if (data.contains('%')) {
        unescaped = percentDecoded(data);
        if (!unescaped) return std::unexpected{"the data: URL has a malformed escape"};
        data = *unescaped;
    }
    if (data.size() > (isBase64 ? base64Length(kLargestArtwork) : kLargestArtwork))
        return std::unexpected{"the picture in the data: URL is larger than 8 MiB"};
    if (!isBase64) return copyOf(bytesOf(data));
    auto bytes = decodeBase64(data);
    if (!bytes) return std::unexpected{"the data: URL is not valid base64"};
    return *std::move(bytes);
}

}  // namespace quorvane
