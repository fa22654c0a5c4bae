// The settings that users give the host: names, values, defaults and meanings. Pure values.
#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

// How much of a track leaves the host.
enum class Privacy {
    full,
    player,    // the player's name instead of title and artist, no album, no artwork
    controls,  // the controls, the times and the volume only
};

struct Settings {
    using Players = std::vector<std::string>;  // names on the bus, in lower case
    using PrivacyByPlayer = std::map<std::string, Privacy, std::less<>>;
    // The user's values, by the setting's name: "on", "player", "10", "vlc mpv".
    using Texts = std::map<std::string, std::string, std::less<>>;

    bool fetchArtwork = false;
    bool pauseOnLock = false;
    bool resumeOnUnlock = false;
    bool quietWake = false;
    Privacy privacy = Privacy::full;
    PrivacyByPlayer privacyOf{};
    std::chrono::minutes idleTime{10};  // 0: never
    Players ignored{};
    Players preferred{};  // the first is preferred most
    bool operator==(const Settings&) const = default;

    // A setting whose text is missing or invalid has its default.
    static Settings of(const Texts& texts);
};

enum class SettingKind { onOff, privacy, minutes, players };

struct SettingRow {
    std::string_view name;  // ends in "PLAYER" where the user puts a player's name
    SettingKind kind;
    std::string_view defaultText;  // "privacy": the value of that setting
    std::string_view meaning;
};

inline constexpr SettingRow kSettings[] = {
    {"fetch-artwork", SettingKind::onOff, "off", "fetch artwork that is on the network"},
    {"pause-on-lock", SettingKind::onOff, "off", "pause what plays when the screen is locked"},
    {"resume-on-unlock", SettingKind::onOff, "off", "at the unlock, resume what the host paused"},
    {"quiet-wake", SettingKind::onOff, "off", "pause what plays when waking while locked"},
    {"privacy", SettingKind::privacy, "full", "how much the card shows: full, player, controls"},
    {"privacy.PLAYER", SettingKind::privacy, "privacy", "the same for one player: privacy.firefox"},
    {"idle-minutes", SettingKind::minutes, "10", "how long a paused track stays; 0: for ever"},
    {"ignore", SettingKind::players, "none", "players that are never followed"},
    {"prefer", SettingKind::players, "none", "players that come first, in this order"},
};

// Names are in lower case here. The value's normal form, or a sentence about what is wrong with the
// name or the value.
std::expected<std::string, std::string> checkedSetting(std::string_view name,
                                                       const std::string& value);
// The present value, or a sentence about what is wrong with the name.
std::expected<std::string, std::string> settingText(const Settings::Texts& texts,
                                                    std::string_view name);
// All settings with value, default and meaning, for the user.
std::string settingsTable(const Settings::Texts& texts);

}  // namespace quorvane
