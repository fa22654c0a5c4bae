#include "bench/JSONRivals.hpp"

#if __has_include(<nlohmann/json.hpp>)
#include <nlohmann/json.hpp>

#include "bench/PlainBase64.hpp"

namespace quorvane {
namespace {

std::size_t decode(std::string_view text) {
    const auto state = nlohmann::json::parse(text);
    const auto& track = state.at("track");
    const auto artwork = decodePlainBase64(track.at("artworkData").get_ref<const std::string&>());
    return artwork.size() + track.at("title").get<std::string>().size() -
           track.at("title").get_ref<const std::string&>().size();
}

std::string encode(std::string_view base64) {
    const nlohmann::json state{{"track",
                                {{"title", "Tideline"},
                                 {"artist", "The Sine Waves"},
                                 {"album", "Low Water"},
                                 {"duration", 243.0},
                                 {"artworkData", base64}}},
                               {"playerState", 2},
                               {"volume", 60},
                               {"playerPosition", 12.5}};
    return state.dump();
}

}  // namespace

std::optional<JSONRival> nlohmannRival() { return JSONRival{"nlohmann", decode, encode}; }

}  // namespace quorvane

#else

namespace quorvane {
std::optional<JSONRival> nlohmannRival() { return std::nullopt; }
}  // namespace quorvane

#endif
