#include "platform/linux/language/Translations.hpp"

#include <algorithm>

namespace quorvane {

constexpr Translations::Row Translations::kRows[] = {
#include "localization/Texts.inc"
};

Translations::Translations(const std::vector<std::string>& locales) {
    for (const std::string_view locale : locales)
        // "zh_CN", then "zh", for "zh_CN.UTF-8".
        for (const char* const end : {".@", "_.@"}) {
            const auto name = locale.substr(0, locale.find_first_of(end));
            rows_ = std::ranges::equal_range(kRows, name, {}, &Row::language);
            if (!rows_.empty()) return;
        }
}

std::string Translations::text(std::string_view key) const {
    const auto row = std::ranges::find(rows_, key, &Row::key);
    return std::string{row == rows_.end() ? key : row->text};
}

}  // namespace quorvane
