#include "platform/linux/language/Translations.hpp"

#include <algorithm>

#include "platform/linux/language/UserLanguage.hpp"

namespace quorvane {

constexpr Translations::Row Translations::kRows[] = {
#include "localization/Texts.inc"
};

Translations::Translations(const std::vector<std::string>& locales) {
    for (const std::string& locale : locales)
        for (const std::string& name : catalogueNames(locale)) {
            rows_ = std::ranges::equal_range(kRows, name, {}, &Row::language);
            if (!rows_.empty()) return;
        }
}

std::string Translations::text(std::string_view key) const {
    const auto row = std::ranges::find(rows_, key, &Row::key);
    return std::string{row == rows_.end() ? key : row->text};
}

}  // namespace quorvane
