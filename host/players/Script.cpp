#include "host/players/Script.hpp"

#include <rapidjson/error/en.h>

#include <algorithm>
#include <map>

#include "host/players/JSONFields.hpp"
#include "host/players/PlayerSnapshot.hpp"

namespace quorvane {

namespace {

constexpr std::uint64_t kLargestScript = 4u << 20;
constexpr std::uint64_t kLargestArtwork = 8u << 20;

// Iterative, so that deep nesting cannot overflow the stack; validated, so that only UTF-8 reaches
// the link.
constexpr unsigned kParseFlags =
    rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;

// Reader of one script's values.
class Reader {
public:
    Reader(std::filesystem::path folder, const RegularFiles& files)
        : folder_(std::move(folder)), files_(files) {}

    Script root(const rapidjson::Value& value);
    const std::string& complaint() const { return complaint_; }

private:
    XPCPlayerCapabilities capabilities(JSONFields& root, std::optional<XPCPlayerType> playerType);
    ScriptedTrack track(const rapidjson::Value& value, const std::string& place);
    std::optional<SharedBytes> artwork(JSONFields& fields);

    std::filesystem::path folder_;
    const RegularFiles& files_;
    std::map<std::string, SharedBytes> artwork_;  // by name, so that tracks share one picture
    std::string complaint_;                       // the first; empty without one
};

std::optional<SharedBytes> Reader::artwork(JSONFields& fields) {
    const auto name = fields.text("artwork");
    if (!name) return std::nullopt;
    if (const auto known = artwork_.find(*name); known != artwork_.end()) return known->second;
    auto file = files_.read(folder_ / *name, kLargestArtwork);
    if (file) return artwork_.emplace(*name, SharedBytes{std::move(file->contents)}).first->second;
    fields.complain("artwork", "cannot be read: " + file.error().description);
    return std::nullopt;
}

ScriptedTrack Reader::track(const rapidjson::Value& value, const std::string& place) {
    JSONFields fields{value, place, complaint_};
    ScriptedTrack result;
    XPCTrack& track = result.track;
    track.title = fields.requiredText("title").value_or("");
    track.artist = fields.requiredText("artist").value_or("");
    track.album = fields.text("album");
    track.albumArtist = fields.text("albumArtist");
    track.duration = fields.number("duration", 0.1, kLongestTrack);
    track.artworkData = artwork(fields);
    track.isLoved = fields.flag("isLoved");
    track.isAdvertisement = fields.flag("isAdvertisement").value_or(false);
    track.isLiveStream = fields.flag("isLiveStream").value_or(false);
    track.motionArtworkLoopID = fields.text("motionArtworkLoopID");
    result.isDisliked = fields.flag("isDisliked");
    result.rating = fields.integer("rating", 0, 100);
    fields.refuseOthers();
    if (!track.isLiveStream && !track.duration)
        fields.complain("duration", "is missing, and the track is not a live stream");
    return result;
}

XPCPlayerCapabilities Reader::capabilities(JSONFields& root,
                                           std::optional<XPCPlayerType> playerType) {
    const bool isAppleMusic = playerType == XPCPlayerType::appleMusic;
    XPCPlayerCapabilities capabilities{.canLove = isAppleMusic,
                                       .canDislike = isAppleMusic,
                                       .canRate = isAppleMusic,
                                       .canAddToLibrary = false,
                                       .hasThreeStateRepeat = isAppleMusic};
    const rapidjson::Value* value = root.object("capabilities");
    if (!value) return capabilities;
    JSONFields fields{*value, "capabilities", complaint_};
    const auto read = [&](const char* key, bool& field) {
        field = fields.flag(key).value_or(field);
    };
    read("canLove", capabilities.canLove);
    read("canDislike", capabilities.canDislike);
    read("canRate", capabilities.canRate);
    read("canAddToLibrary", capabilities.canAddToLibrary);
    read("hasThreeStateRepeat", capabilities.hasThreeStateRepeat);
    fields.refuseOthers();
    return capabilities;
}

Script Reader::root(const rapidjson::Value& value) {
    using Type = std::optional<XPCPlayerType>;
    static constexpr std::pair<std::string_view, Type> kPlayers[] = {
        {"appleMusic", XPCPlayerType::appleMusic},
        {"spotify", XPCPlayerType::spotify},
        {"other", Type{}}};
    static constexpr std::pair<std::string_view, XPCRepeatMode> kRepeatModes[] = {
        {"off", XPCRepeatMode::off}, {"one", XPCRepeatMode::one}, {"all", XPCRepeatMode::all}};

    Script script;
    JSONFields fields{value, "", complaint_};
    script.playerType = fields.choice("player", kPlayers).value_or(script.playerType);
    script.capabilities = capabilities(fields, script.playerType);
    script.volume = fields.integer("volume", 0, 100).value_or(script.volume);
    script.repeatMode = fields.choice("repeat", kRepeatModes).value_or(script.repeatMode);
    script.shuffleEnabled = fields.flag("shuffle").value_or(script.shuffleEnabled);
    script.autoplay = fields.flag("autoplay").value_or(script.autoplay);
    script.startTrack =
        static_cast<std::size_t>(fields.integer("startTrack", 0, 1'000'000).value_or(0));
    script.startPosition = fields.number("startPosition", 0, kLongestTrack).value_or(0);
    if (const rapidjson::Value* tracks = fields.array("tracks")) {
        for (const auto& each : tracks->GetArray()) {
            const std::string place = "tracks[" + std::to_string(script.tracks.size()) + "]";
            if (!each.IsObject()) fields.complain(place, "must be an object");
            script.tracks.push_back(each.IsObject() ? track(each, place) : ScriptedTrack{});
        }
    }
    fields.refuseOthers();
    if (script.tracks.empty()) fields.complain("tracks", "must be a list of at least one track");
    if (!script.tracks.empty() && script.startTrack >= script.tracks.size())
        fields.complain("startTrack", "there are only " + std::to_string(script.tracks.size()) +
                                          " tracks, counted from 0");
    return script;
}

std::string parseError(const rapidjson::Document& document, std::string_view text) {
    const std::size_t offset = std::min(document.GetErrorOffset(), text.size());
    const auto line = 1 + std::ranges::count(text.substr(0, offset), '\n');
    return "line " + std::to_string(line) +
           ": not JSON: " + rapidjson::GetParseError_En(document.GetParseError());
}

}  // namespace

std::expected<Script, std::string> readScript(const std::filesystem::path& file,
                                              const RegularFiles& files) {
    const auto fail = [&](const std::string& reason) {
        return std::unexpected{file.string() + ": " + reason};
    };
    const auto contents = files.read(file, kLargestScript);
    if (!contents) return std::unexpected{contents.error().description};
    const std::string_view text = textOf(contents->contents);
    if (text.contains('\0')) return fail("not JSON: it contains bytes that are not text");

    rapidjson::Document document;
    document.Parse<kParseFlags>(text.data(), text.size());
    if (document.HasParseError()) return fail(parseError(document, text));
    if (!document.IsObject()) return fail("must contain one object");

    Reader reader{file.parent_path(), files};
    Script script = reader.root(document);
    if (!reader.complaint().empty()) return fail(reader.complaint());
    return script;
}

}  // namespace quorvane
