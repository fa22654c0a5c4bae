#include "host/settings/Settings.hpp"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <span>
#include <utility>

#include "host/settings/TextTable.hpp"
#include "platform/LowerCase.hpp"

namespace quorvane {

namespace {

using Minutes = std::chrono::minutes;

constexpr std::string_view kPlayerPlace = "PLAYER";
constexpr std::string_view kPrivacyPrefix = "privacy.";
constexpr std::string_view kOnOff[] = {"off", "on"};
constexpr std::string_view kPrivacy[] = {"full", "player", "controls"};  // as in Privacy
constexpr std::string_view kNoPlayers = "none";
constexpr char kHint[] = " (see: quorvane-host players)";
constexpr Minutes kLongestIdleTime = std::chrono::hours{24};

// The number of letters to change, add or remove.
std::size_t editDistance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] != to[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

// "; did you mean '…'?", unless nothing is near.
std::string suggestion(std::string_view word, std::span<const std::string_view> choices) {
    const auto far = [&](std::string_view choice) { return editDistance(word, choice); };
    const std::string_view nearest = *std::ranges::min_element(choices, {}, far);
    return far(nearest) > (nearest.size() + 1) / 2
               ? ""
               : "; did you mean '" + std::string{nearest} + "'?";
}

// Whether the text has only characters of a bus name in lower case.
bool isPlayerName(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
    });
}

std::span<const std::string_view> choicesOf(SettingKind kind) {
    if (kind == SettingKind::onOff) return kOnOff;
    return kPrivacy;
}

std::optional<Minutes> minutesOf(const std::string& text) {
    int value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || rest != end || value < 0 || Minutes{value} > kLongestIdleTime)
        return std::nullopt;
    return Minutes{value};
}

// Without a stream, whose locale would cost every host about 200 kB of the C++ library.
Settings::Players playersOf(const std::string& text) {
    constexpr char kBlanks[] = " ,";
    Settings::Players players;
    for (std::size_t at = 0; (at = text.find_first_not_of(kBlanks, at)) != text.npos;) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, at), text.size());
        players.push_back(lowerCase(text.substr(at, end - at)));
        at = end;
    }
    if (players == Settings::Players{std::string{kNoPlayers}}) players.clear();
    return players;
}

// The one text of the value, nullopt if it is invalid.
std::optional<std::string> normalForm(SettingKind kind, const std::string& text) {
    if (kind == SettingKind::minutes) {
        const auto minutes = minutesOf(text);
        return minutes ? std::optional{std::to_string(minutes->count())} : std::nullopt;
    }
    if (kind != SettingKind::players) {
        std::string lower = lowerCase(text);
        const auto choices = choicesOf(kind);
        if (std::ranges::find(choices, lower) == choices.end()) return std::nullopt;
        return lower;
    }
    std::string all;
    for (const std::string& player : playersOf(text)) {
        if (!isPlayerName(player)) return std::nullopt;
        all += (all.empty() ? "" : " ") + player;
    }
    return all.empty() ? std::string{kNoPlayers} : all;
}

// The values that a setting takes, for the message about an invalid text.
std::string mistake(SettingKind kind, const std::string& text) {
    const std::string notThis = ", not '" + text + "'";
    if (kind == SettingKind::players) return "names of players" + notThis + kHint;
    if (kind == SettingKind::minutes)
        return "a number from 0 to " + std::to_string(kLongestIdleTime.count()) + notThis;
    std::string all;
    const auto choices = choicesOf(kind);
    for (const std::string_view& each : choices)
        all += (all.empty() ? "" : &each == &choices.back() ? " or " : ", ") + std::string{each};
    return all + notThis + suggestion(lowerCase(text), choices);
}

std::expected<const SettingRow*, std::string> rowNamed(std::string_view name) {
    std::vector<std::string_view> names;
    for (const SettingRow& row : kSettings) {
        if (row.name == name) return &row;
        names.push_back(row.name);
        if (!row.name.ends_with(kPlayerPlace) || !name.starts_with(kPrivacyPrefix)) continue;
        const auto player = name.substr(kPrivacyPrefix.size());
        if (isPlayerName(player)) return &row;
        return std::unexpected{"'" + std::string{player} + "' is not a player's name" + kHint};
    }
    return std::unexpected{"unknown setting '" + std::string{name} + "'" + suggestion(name, names)};
}

}  // namespace

Settings Settings::of(const Texts& texts) {
    const auto text = [&](std::string_view name) { return settingText(texts, name).value(); };
    const auto isOn = [&](std::string_view name) { return text(name) == "on"; };
    const auto privacy = [&](std::string_view name) {
        return static_cast<Privacy>(std::ranges::find(kPrivacy, text(name)) - kPrivacy);
    };
    Settings settings{.fetchArtwork = isOn("fetch-artwork"),
                      .pauseOnLock = isOn("pause-on-lock"),
                      .resumeOnUnlock = isOn("resume-on-unlock"),
                      .quietWake = isOn("quiet-wake"),
                      .privacy = privacy("privacy"),
                      .idleTime = minutesOf(text("idle-minutes")).value(),
                      .ignored = playersOf(text("ignore")),
                      .preferred = playersOf(text("prefer"))};
    for (const auto& [name, value] : texts)
        if (name.starts_with(kPrivacyPrefix) && rowNamed(name))
            settings.privacyOf.emplace(name.substr(kPrivacyPrefix.size()), privacy(name));
    return settings;
}

std::expected<std::string, std::string> checkedSetting(std::string_view name,
                                                       const std::string& value) {
    const auto row = rowNamed(name);
    if (!row) return std::unexpected{row.error()};
    if (auto text = normalForm((*row)->kind, value)) return *std::move(text);
    return std::unexpected{std::string{name} + " takes " + mistake((*row)->kind, value)};
}

std::expected<std::string, std::string> settingText(const Settings::Texts& texts,
                                                    std::string_view name) {
    const auto row = rowNamed(name);
    if (!row) return std::unexpected{row.error()};
    if (const auto found = texts.find(name); found != texts.end())
        if (auto text = normalForm((*row)->kind, found->second)) return *std::move(text);
    const std::string_view defaultText = (*row)->defaultText;
    return defaultText == "privacy" ? settingText(texts, defaultText) : std::string{defaultText};
}

std::string settingsTable(const Settings::Texts& texts) {
    std::vector<std::vector<std::string>> rows{{"SETTING", "VALUE", "DEFAULT", "MEANING"}};
    const auto add = [&](std::string_view name, const std::string& value, const SettingRow& row,
                         std::string_view meaning) {
        rows.push_back(
            {std::string{name}, value, std::string{row.defaultText}, std::string{meaning}});
    };
    for (const SettingRow& row : kSettings) {
        const bool isOfPlayers = row.name.ends_with(kPlayerPlace);
        add(row.name, isOfPlayers ? "" : *settingText(texts, row.name), row, row.meaning);
        for (const auto& [name, text] : texts)
            if (isOfPlayers && name.starts_with(kPrivacyPrefix) && rowNamed(name))
                add(name, *settingText(texts, name), row, "");
    }
    return textTable(std::move(rows));
}

}  // namespace quorvane
