#include "host/players/FileURL.hpp"

#include <charconv>

namespace quorvane {

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

}  // namespace quorvane
