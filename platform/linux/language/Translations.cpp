#include "platform/linux/language/Translations.hpp"

#include "platform/RegularFiles.hpp"
#include "platform/linux/language/UserLanguage.hpp"

namespace quorvane {
namespace {

constexpr std::uint64_t kLargestCatalogue = 1 << 20;

std::optional<MessageCatalogue> readCatalogue(const std::filesystem::path& folder,
                                              const std::string& name) {
    // Values from the environment must not form other paths.
    if (name.empty() || name.find('/') != std::string::npos) return std::nullopt;
    const auto file = makeLiveRegularFiles().read(
        folder / name / "LC_MESSAGES" / "quorvane-lock-screen.mo", kLargestCatalogue);
    return file ? MessageCatalogue::parse(file->contents) : std::nullopt;
}

}  // namespace

Translations::Translations(const std::filesystem::path& folder,
                           const std::vector<std::string>& locales) {
    for (const std::string& locale : locales)
        for (const std::string& name : catalogueNames(locale))
            if (auto catalogue = readCatalogue(folder, name)) {
                catalogue_ = *std::move(catalogue);
                return;
            }
}

std::string Translations::text(const std::string& key) const {
    const std::string* const text = catalogue_.find(key);
    return text ? *text : key;
}

std::filesystem::path localeFolder(const std::filesystem::path& bundle) {
    return bundle / "Contents" / "Resources" / "locale";
}

}  // namespace quorvane
