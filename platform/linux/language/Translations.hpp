// The program's texts in the user's language, from the catalogues in its bundle.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/language/MessageCatalogue.hpp"

namespace quorvane {

// Read whole when made, so that a bundle that is removed later is not missed. Any thread.
class Translations {
public:
    // The first of the locales that has a catalogue in the folder counts; with none of them the
    // texts are their keys.
    Translations(const std::filesystem::path& folder, const std::vector<std::string>& locales);

    std::string text(const std::string& key) const;

private:
    MessageCatalogue catalogue_;
};

// Where a bundle has its catalogues.
std::filesystem::path localeFolder(const std::filesystem::path& bundle);

}  // namespace quorvane
