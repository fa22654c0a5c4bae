// The card's texts in the user's language, from a table that the build makes of localization/*.po.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

// A plain value.
class Translations {
public:
    // Uses the first locale with translations. Without one, the texts are their keys.
    explicit Translations(const std::vector<std::string>& locales);

    std::string text(std::string_view key) const;

private:
    struct Row {
        std::string_view language;
        std::string_view key;
        std::string_view text;
    };
    static const Row kRows[];

    std::span<const Row> rows_;  // of one language
};

}  // namespace quorvane
