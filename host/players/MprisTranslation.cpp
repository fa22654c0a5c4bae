#include "host/players/MprisTranslation.hpp"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/players/PlayerSnapshot.hpp"
#include "host/players/PlayerURL.hpp"
#include "platform/Character.hpp"
#include "platform/LowerCase.hpp"

namespace quorvane {

namespace {

constexpr std::string_view kNamePrefix = "org.mpris.MediaPlayer2.";
constexpr std::string_view kNoTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";
// No card shows more, and a player must not make states too large to be sent.
constexpr std::size_t kLongestText = 4096;

const PropertyDictionary& metadataOf(const MediaPlayer& player) {
    static const PropertyDictionary none;
    const auto* metadata = find<PropertyDictionary>(player.properties, "Metadata");
    return metadata ? *metadata : none;
}

// At most kLongestText bytes, cut at a character boundary.
std::string withinReason(std::string_view text) {
    if (text.size() <= kLongestText) return std::string{text};
    std::size_t end = kLongestText;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
    return std::string{text.substr(0, end)};
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

// A list of names as one text. Some players send a text where a list is specified.
std::string joinedNames(const PropertyDictionary& metadata, std::string_view key) {
    if (find<std::string>(metadata, key)) return textOf(metadata, key);
    const auto* names = find<PropertyArray>(metadata, key);
    if (!names) return "";
    std::string joined;
    for (const PropertyValue& value : *names) {
        const auto* name = value.as<std::string>();
        if (joined.size() > kLongestText) break;
        if (name && !name->empty()) joined += (joined.empty() ? "" : ", ") + withinReason(*name);
    }
    return withinReason(joined);
}

std::optional<std::string> unlessEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional{std::move(text)};
}

std::string trackIdentifier(const PropertyDictionary& metadata) {
    return textOf(metadata, "mpris:trackid");
}

bool isAddress(std::string_view text) { return text.find("://") != std::string_view::npos; }

bool isOnNetwork(std::string_view url) { return isAddress(url) && !url.starts_with("file:"); }

// Some players use an untagged track's address, or the part after its last slash, as the title.
bool isMadeOfAddress(const std::string& title, const std::string& url) {
    const auto endsIn = [end = '/' + title](const std::optional<std::string>& text) {
        return text && text->ends_with(end);
    };
    return isAddress(title) || endsIn(url) || endsIn(percentDecoded(url));
}

// The host's name in a network URL, without a user, a password or a port.
std::string hostNameOf(std::string_view url) {
    if (!isOnNetwork(url)) return "";
    url.remove_prefix(url.find("://") + 3);
    url = url.substr(0, url.find_first_of("/?#"));
    url.remove_prefix(url.rfind('@') + 1);  // npos + 1 is 0
    const auto port = url.find(':', url.starts_with('[') ? url.find(']') : 0);
    return std::string{url.substr(0, port)};
}

// The file's name without its extension.
std::string fileTitleOf(const std::string& url) {
    const auto file = localFile(url);
    const std::string name = file ? file->stem().string() : "";
    return isValidUTF8(name) ? name : "";  // a file's name may hold any bytes
}

// The result never contains a network URL, because its path or query may hold a secret.
std::string titleOf(const MediaPlayer& player) {
    const PropertyDictionary& metadata = metadataOf(player);
    const std::string url = textOf(metadata, "xesam:url");
    if (auto title = textOf(metadata, "xesam:title");
        !title.empty() && !isMadeOfAddress(title, url))
        return title;
    if (auto title = fileTitleOf(url); !title.empty()) return title;
    if (auto host = hostNameOf(url); !host.empty()) return host;
    return playerNameOf(player);
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

// The service marks what it plays between tracks in the identifier.
bool isAdvertisement(const PropertyDictionary& metadata) {
    const std::string identifier = trackIdentifier(metadata);
    return identifier.starts_with("spotify:ad:") || identifier.starts_with("/com/spotify/ad/");
}

XPCPlayerState transportOf(const MediaPlayer& player) {
    const std::string status = textOf(player.properties, "PlaybackStatus");
    if (status == "Playing") return XPCPlayerState::playing;
    if (status == "Paused") return XPCPlayerState::paused;
    if (status == "Stopped") return XPCPlayerState::stopped;
    return XPCPlayerState::unknown;
}

std::optional<XPCTrack> trackOf(const MediaPlayer& player) {
    const PropertyDictionary& metadata = metadataOf(player);
    if (trackIdentifier(metadata) == kNoTrack) return std::nullopt;
    const XPCPlayerState transport = transportOf(player);
    if (isNameless(player) && transport != XPCPlayerState::playing &&
        transport != XPCPlayerState::paused)
        return std::nullopt;
    XPCTrack track;
    track.title = titleOf(player);
    track.artist = joinedNames(metadata, "xesam:artist");
    track.album = unlessEmpty(textOf(metadata, "xesam:album"));
    track.albumArtist = unlessEmpty(joinedNames(metadata, "xesam:albumArtist"));
    track.duration = durationOf(metadata);
    track.isAdvertisement = isSpotify(player) && isAdvertisement(metadata);
    track.isLiveStream = !track.duration && isOnNetwork(textOf(metadata, "xesam:url"));
    return track;
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
    state.shuffleEnabled = flagOf(player, "Shuffle", false);
    return state;
}

std::string_view nameOnBus(const MediaPlayer& player) {
    std::string_view name = player.busName;
    if (name.starts_with(kNamePrefix)) name.remove_prefix(kNamePrefix.size());
    return name;
}

std::string playerNameOf(const MediaPlayer& player) {
    if (!player.identity.empty()) return withinReason(player.identity);
    const std::string_view name = nameOnBus(player);
    return std::string{name.substr(0, name.find('.'))};
}

std::string trackKeyOf(const MediaPlayer& player) {
    const auto track = trackOf(player);
    if (!track) return "";
    // The identifier is not enough: some players use one for all tracks, others change titles
    // within a stream.
    constexpr char separator = '\x1f';
    const PropertyDictionary& metadata = metadataOf(player);
    return trackIdentifier(metadata) + separator + textOf(metadata, "xesam:url") + separator +
           track->title;
}

double rateOf(const MediaPlayer& player) {
    const auto rate = numberOf(player.properties, "Rate");
    return rate && *rate > 0 && *rate <= 100 ? *rate : 1;
}

std::optional<double> ownVolumeOf(const MediaPlayer& player) {
    const auto volume = numberOf(player.properties, "Volume");
    if (!volume) return std::nullopt;
    return std::clamp(*volume, 0.0, 1.0);
}

bool allows(const MediaPlayer& player, std::string_view flag) { return flagOf(player, flag, true); }

bool isNameless(const MediaPlayer& player) {
    const PropertyDictionary& metadata = metadataOf(player);
    return textOf(metadata, "xesam:title").empty() && textOf(metadata, "xesam:url").empty();
}

bool isNamed(const MediaPlayer& player, std::string_view name) {
    const std::string rest = lowerCase(nameOnBus(player));
    return rest.starts_with(lowerCase(name)) &&
           (rest.size() == name.size() || rest[name.size()] == '.');
}

}  // namespace quorvane
