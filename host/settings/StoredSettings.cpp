#include "host/settings/StoredSettings.hpp"

#include "QuorvaneKit/link/Identifiers.hpp"
#include "platform/LowerCase.hpp"

namespace quorvane {

namespace {

constexpr char kSettingsKey[] = "settings";

std::string changeNotice() { return std::string{kIdentifierPrefix} + ".Host.settingsChanged"; }

}  // namespace

StoredSettings::StoredSettings(UserDefaults defaults, DarwinNotices notices)
    : defaults_(std::move(defaults)),
      notices_(std::move(notices)),
      current_(Settings::of(texts())),
      observation_(
          notices_.observe(changeNotice(), [this] { current_.set(Settings::of(texts())); })) {}

Settings::Texts StoredSettings::texts() const {
    const auto stored = defaults_.get(kSettingsKey);
    const auto* const dictionary = stored ? stored->as<PropertyDictionary>() : nullptr;
    Settings::Texts texts;
    if (!dictionary) return texts;
    for (const auto& [name, value] : *dictionary)
        if (const auto* const text = value.as<std::string>()) texts.emplace(name, *text);
    return texts;
}

StoredSettings::Outcome StoredSettings::set(std::span<const std::string> words) {
    if (words.empty()) return settingsTable(texts());
    const std::string name = lowerCase(words.front());
    if (words.size() == 1) {
        auto text = settingText(texts(), name);
        return text ? *text + '\n' : text;
    }
    std::string value;
    for (const std::string& word : words.subspan(1)) value += (value.empty() ? "" : " ") + word;
    const auto checked = checkedSetting(name, value);
    if (!checked) return checked;
    Settings::Texts changed = texts();
    changed.insert_or_assign(name, *checked);
    return write(name, changed);
}

StoredSettings::Outcome StoredSettings::unset(std::span<const std::string> words) {
    if (words.size() != 1) return std::unexpected{"unset takes the name of one setting"};
    const std::string name = lowerCase(words.front());
    if (const auto known = settingText({}, name); !known) return known;
    Settings::Texts changed = texts();
    changed.erase(name);
    return write(name, changed);
}

StoredSettings::Outcome StoredSettings::write(const std::string& name,
                                              const Settings::Texts& texts) {
    PropertyDictionary stored;
    for (const auto& [each, text] : texts) stored.emplace(each, PropertyValue{text});
    defaults_.set(kSettingsKey, PropertyValue{std::move(stored)});
    if (const auto written = defaults_.synchronize(); !written)
        return std::unexpected{"the settings cannot be written: " + written.error().description};
    notices_.post(changeNotice());
    current_.set(Settings::of(texts));
    return name + ": " + settingText(texts, name).value_or("") + '\n';
}

}  // namespace quorvane
