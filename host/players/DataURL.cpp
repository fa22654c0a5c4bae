#include "host/players/DataURL.hpp"

#include <string>

#include "QuorvaneKit/json/Base64.hpp"
#include "host/players/FileURL.hpp"
#include "platform/FetchPicture.hpp"

namespace quorvane {

namespace {

constexpr std::string_view kScheme = "data:";

}  // namespace

bool isDataURL(std::string_view url) { return url.starts_with(kScheme); }

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
