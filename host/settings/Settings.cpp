#include "host/settings/Settings.hpp"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <optional>
#include <type_traits>
#include <utility>

#include "host/settings/TextTable.hpp"
#include "platform/LowerCase.hpp"

namespace quorvane {

namespace {

using Minutes = std::chrono::minutes;

constexpr std::string_view kPlayerPlace = "PLAYER";
constexpr std::string_view kSwitch[] = {"off", "on"};
constexpr std::string_view kPrivacy[] = {"full", "player", "controls"};
constexpr std::string_view kNoPlayers = "none";
constexpr char kHint[] = " (see: quorvane-host players)";
constexpr Minutes kLongestIdleTime = std::chrono::hours{24};

// The number of letters to change, add or remove.
std::size_t distance(std::string_view from, std::string_view to) {
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
std::string suggestion(std::string_view word, const auto& choices) {
    const auto far = [&](std::string_view choice) { return distance(word, choice); };
    const std::string_view nearest = *std::ranges::min_element(choices, {}, far);
    return far(nearest) > (nearest.size() + 1) / 2
               ? ""
               : "; did you mean '" + std::string{nearest} + "'?";
}

// What a bus name may hold.
bool isPlayerName(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
    });
}

// How each kind reads its text, shows its value, and explains what it takes.
template <typename T>
struct Kind;

template <typename T, const auto& choices>
struct Choice {
    static std::optional<T> read(const std::string& text) {
        const auto found = std::ranges::find(choices, lowerCase(text));
        if (found == std::end(choices)) return std::nullopt;
        return static_cast<T>(found - std::begin(choices));
    }
    static std::string text(T value) { return std::string{choices[static_cast<int>(value)]}; }
    static std::string mistake(const std::string& text) {
        std::string all;
        for (const std::string_view each : choices)
            all += (all.empty()                     ? ""
                    : each == std::end(choices)[-1] ? " or "
                                                    : ", ") +
                   std::string{each};
        return all + ", not '" + text + "'" + suggestion(lowerCase(text), choices);
    }
};
template <>
struct Kind<bool> : Choice<bool, kSwitch> {};
template <>
struct Kind<Privacy> : Choice<Privacy, kPrivacy> {};

template <>
struct Kind<Minutes> {
    static std::optional<Minutes> read(const std::string& text) {
        int value = 0;
        const char* const end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, value);
        if (error != std::errc{} || rest != end || value < 0 || Minutes{value} > kLongestIdleTime)
            return std::nullopt;
        return Minutes{value};
    }
    static std::string text(Minutes value) { return std::to_string(value.count()); }
    static std::string mistake(const std::string& text) {
        return "a number from 0 to " + Kind::text(kLongestIdleTime) + ", not '" + text + "'";
    }
};

template <>
struct Kind<Settings::Players> {
    static std::optional<Settings::Players> read(const std::string& text) {
        Settings::Players players;
        constexpr char kBlanks[] = " ,";
        for (std::size_t at = 0; (at = text.find_first_not_of(kBlanks, at)) != text.npos;) {
            const std::size_t end = std::min(text.find_first_of(kBlanks, at), text.size());
            players.push_back(lowerCase(text.substr(at, end - at)));
            at = end;
        }
        if (!std::ranges::all_of(players, isPlayerName)) return std::nullopt;
        if (players == Settings::Players{std::string{kNoPlayers}}) players.clear();
        return players;
    }
    static std::string text(const Settings::Players& players) {
        std::string all;
        for (const std::string& each : players) all += (all.empty() ? "" : " ") + each;
        return all.empty() ? std::string{kNoPlayers} : all;
    }
    static std::string mistake(const std::string& text) {
        return "names of players, not '" + text + "'" + kHint;
    }
};

// What a name stands for.
struct Setting {
    const SettingRow& row;
    std::string player;  // of "privacy.PLAYER"
};

std::expected<Setting, std::string> settingNamed(std::string_view name) {
    std::vector<std::string_view> names;
    for (const SettingRow& row : kSettings) {
        if (row.name == name) return Setting{row, ""};
        names.push_back(row.name);
        if (!row.name.ends_with(kPlayerPlace)) continue;
        const auto prefix = row.name.substr(0, row.name.size() - kPlayerPlace.size());
        if (!name.starts_with(prefix)) continue;
        const std::string player{name.substr(prefix.size())};
        if (isPlayerName(player)) return Setting{row, player};
        return std::unexpected{"'" + player + "' is no player's name" + kHint};
    }
    return std::unexpected{"unknown setting '" + std::string{name} + "'" + suggestion(name, names)};
}

// Calls the action with the setting's Kind and its place in `settings`.
template <typename Action>
auto visit(Settings& settings, const Setting& setting, Action action) {
    return std::visit(
        [&](auto field) {
            auto& value = settings.*field;
            if constexpr (std::is_same_v<decltype(value), Settings::PrivacyByPlayer&>) {
                const auto entry = value.try_emplace(setting.player, settings.privacy).first;
                return action(Kind<Privacy>{}, entry->second);
            } else {
                return action(Kind<std::remove_reference_t<decltype(value)>>{}, value);
            }
        },
        setting.row.value);
}

std::string textOf(Settings settings, const Setting& setting) {
    return visit(settings, setting,
                 [](auto kind, const auto& value) { return decltype(kind)::text(value); });
}

std::expected<void, std::string> assign(Settings& settings, const Setting& setting,
                                        const std::string& text) {
    using Result = std::expected<void, std::string>;
    return visit(settings, setting, [&](auto kind, auto& value) -> Result {
        const auto read = kind.read(text);
        if (!read) return std::unexpected{kind.mistake(text)};
        value = *read;
        return {};
    });
}

}  // namespace

Settings Settings::of(const Texts& texts) {
    Settings settings;
    for (const auto& [name, text] : texts)
        if (const auto setting = settingNamed(name)) {
            Settings next = settings;
            if (assign(next, *setting, text)) settings = std::move(next);
        }
    return settings;
}

std::expected<std::string, std::string> checkedSetting(std::string_view name,
                                                       const std::string& value) {
    const auto setting = settingNamed(name);
    if (!setting) return std::unexpected{setting.error()};
    Settings settings;
    if (const auto assigned = assign(settings, *setting, value); !assigned)
        return std::unexpected{std::string{name} + " takes " + assigned.error()};
    return textOf(settings, *setting);
}

std::expected<std::string, std::string> settingText(const Settings& settings,
                                                    std::string_view name) {
    const auto setting = settingNamed(name);
    if (!setting) return std::unexpected{setting.error()};
    return textOf(settings, *setting);
}

std::string settingsTable(const Settings& settings) {
    std::vector<std::vector<std::string>> rows{{"SETTING", "VALUE", "DEFAULT", "MEANING"}};
    for (const SettingRow& row : kSettings) {
        const std::string name{row.name}, meaning{row.meaning};
        if (!name.ends_with(kPlayerPlace)) {
            rows.push_back(
                {name, textOf(settings, {row, ""}), textOf(Settings{}, {row, ""}), meaning});
            continue;
        }
        rows.push_back({name, "", "privacy", meaning});
        for (const auto& [player, privacy] : settings.privacyOf)
            rows.push_back({"privacy." + player, Kind<Privacy>::text(privacy), "privacy", ""});
    }
    return textTable(std::move(rows));
}

}  // namespace quorvane
