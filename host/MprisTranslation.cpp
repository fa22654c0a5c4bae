#include "host/MprisTranslation.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "QuorvaneKit/UTF8.hpp"
#include "host/FileURL.hpp"

namespace quorvane {

namespace {

constexpr std::string_view kNamePrefix = "org.mpris.MediaPlayer2.";
constexpr std::string_view kNoTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";
// No card shows more; a player must not be able to make states too large to be sent.
constexpr std::size_t kLongestText = 4096;
// Streams without an end are announced with no length or with an absurd one.
constexpr double kLongestTrack = 7 * 24 * 3600;

const PropertyDictionary& metadataOf(const MediaPlayer& player) {
    static const PropertyDictionary none;
    const auto* metadata = find<PropertyDictionary>(player.properties, "Metadata");
    return metadata ? *metadata : none;
}

// At most kLongestText bytes, cut between two characters.
std::string withinReason(std::string text) {
    if (text.size() <= kLongestText) return text;
    std::size_t end = kLongestText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    text.resize(end);
    return text;
}

std::string textOf(const PropertyDictionary& dictionary, std::string_view key) {
    const auto* text = find<std::string>(dictionary, key);
    return text ? withinReason(*text) : "";
}

bool flagOf(const MediaPlayer& player, std::string_view key, bool fallback) {
    const auto* flag = find<bool>(player.properties, key);
    return flag ? *flag : fallback;
}

std::optional<double> numberOf(const PropertyDictionary& dictionary, std::string_view key) {
    if (const auto* real = find<double>(dictionary, key))
        return std::isfinite(*real) ? std::optional{*real} : std::nullopt;
    if (const auto* whole = find<std::int64_t>(dictionary, key)) return static_cast<double>(*whole);
    return std::nullopt;
}

// A list of names as one text. Some players give a text where a list is asked for.
std::string joinedNames(const PropertyDictionary& metadata, std::string_view key) {
    if (find<std::string>(metadata, key)) return textOf(metadata, key);
    const auto* names = find<PropertyArray>(metadata, key);
    if (!names) return "";
    std::string joined;
    for (const PropertyValue& value : *names) {
        const auto* name = value.as<std::string>();
        if (name && !name->empty()) joined += (joined.empty() ? "" : ", ") + *name;
    }
    return withinReason(std::move(joined));
}

std::optional<std::string> unlessEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional{std::move(text)};
}

std::string trackIdentifier(const PropertyDictionary& metadata) {
    return textOf(metadata, "mpris:trackid");
}

// Untagged files are known by their file's name.
std::string titleOf(const PropertyDictionary& metadata) {
    const std::string title = textOf(metadata, "xesam:title");
    if (!title.empty()) return title;
    const std::string url = textOf(metadata, "xesam:url");
    const auto file = localFile(url);
    // A file's name may hold any bytes, the link carries text.
    const std::string name = file ? file->filename().string() : "";
    return name.empty() || !isValidUTF8(name) ? url : name;
}

bool isOnNetwork(const std::string& url) {
    return url.find("://") != std::string::npos && !url.starts_with("file:");
}

std::optional<double> durationOf(const PropertyDictionary& metadata) {
    const auto microseconds = numberOf(metadata, "mpris:length");
    if (!microseconds) return std::nullopt;
    const double seconds = *microseconds / 1e6;
    return seconds > 0 && seconds <= kLongestTrack ? std::optional{seconds} : std::nullopt;
}

bool isSpotify(const MediaPlayer& player) {
    return player.identity == "Spotify" || isNamed(player, "spotify");
}

// The streaming service marks what it plays between tracks in the identifier.
bool isAdvertisement(const PropertyDictionary& metadata) {
    const std::string identifier = trackIdentifier(metadata);
    return identifier.starts_with("spotify:ad:") || identifier.starts_with("/com/spotify/ad/");
}

std::optional<XPCTrack> trackOf(const MediaPlayer& player) {
    const PropertyDictionary& metadata = metadataOf(player);
    XPCTrack track;
    track.title = titleOf(metadata);
    if (track.title.empty() || trackIdentifier(metadata) == kNoTrack) return std::nullopt;
    track.artist = joinedNames(metadata, "xesam:artist");
    track.album = unlessEmpty(textOf(metadata, "xesam:album"));
    track.albumArtist = unlessEmpty(joinedNames(metadata, "xesam:albumArtist"));
    track.duration = durationOf(metadata);
    track.isAdvertisement = isSpotify(player) && isAdvertisement(metadata);
    track.isLiveStream = !track.duration && isOnNetwork(textOf(metadata, "xesam:url"));
    return track;
}

XPCPlayerState transportOf(const MediaPlayer& player) {
    const std::string status = textOf(player.properties, "PlaybackStatus");
    if (status == "Playing") return XPCPlayerState::playing;
    if (status == "Paused") return XPCPlayerState::paused;
    if (status == "Stopped") return XPCPlayerState::stopped;
    return XPCPlayerState::unknown;
}

std::optional<XPCRepeatMode> repeatModeOf(const MediaPlayer& player) {
    const std::string status = textOf(player.properties, "LoopStatus");
    if (status == "None") return XPCRepeatMode::off;
    if (status == "Track") return XPCRepeatMode::one;
    if (status == "Playlist") return XPCRepeatMode::all;
    return std::nullopt;
}

}  // namespace

QuorvanePlayerState playerStateOf(const MediaPlayer& player) {
    QuorvanePlayerState state;
    state.track = trackOf(player);
    state.playerState = transportOf(player);
    if (isSpotify(player)) state.playerType = XPCPlayerType::spotify;
    state.repeatMode = repeatModeOf(player);
    state.capabilities.hasThreeStateRepeat = state.repeatMode.has_value();
    // A player that has no volume of its own plays at full volume.
    const double volume = volumeOf(player).value_or(1);
    state.volume = std::lround(volume * 100);
    state.isMuted = state.volume == 0;
    state.shuffleEnabled = flagOf(player, "Shuffle", false);
    return state;
}

std::string artworkURLOf(const MediaPlayer& player) {
    return textOf(metadataOf(player), "mpris:artUrl");
}

std::string trackKeyOf(const MediaPlayer& player) {
    const auto track = trackOf(player);
    if (!track) return "";
    // Some players give every track the same identifier, others change titles within a stream.
    constexpr char separator = '\x1f';
    const PropertyDictionary& metadata = metadataOf(player);
    return trackIdentifier(metadata) + separator + textOf(metadata, "xesam:url") + separator +
           track->title;
}

double rateOf(const MediaPlayer& player) {
    const auto rate = numberOf(player.properties, "Rate");
    return rate && *rate > 0 && *rate <= 100 ? *rate : 1;
}

std::optional<double> volumeOf(const MediaPlayer& player) {
    const auto volume = numberOf(player.properties, "Volume");
    if (!volume) return std::nullopt;
    return std::clamp(*volume, 0.0, 1.0);
}

bool isNamed(const MediaPlayer& player, std::string_view name) {
    std::string_view rest = player.busName;
    if (!rest.starts_with(kNamePrefix)) return false;
    rest.remove_prefix(kNamePrefix.size());
    return rest.starts_with(name) && (rest.size() == name.size() || rest[name.size()] == '.');
}

bool isProxy(const MediaPlayer& player) { return isNamed(player, "playerctld"); }

}  // namespace quorvane
