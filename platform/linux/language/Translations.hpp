// Texts of the program in the user's language, from the catalogues in its bundle.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/language/MessageCatalogue.hpp"

namespace quorvane {

// Reads the whole catalogue on construction, so that removing the bundle later does no harm. Any
// thread.
class Translations {
public:
    // Uses the first locale with a catalogue in the folder. Without one, the texts are their keys.
    Translations(const std::filesystem::path& folder, const std::vector<std::string>& locales);

    std::string text(const std::string& key) const;

private:
    MessageCatalogue catalogue_;
};

// The folder of a bundle's catalogues.
std::filesystem::path localeFolder(const std::filesystem::path& bundle);

}  // namespace quorvane
