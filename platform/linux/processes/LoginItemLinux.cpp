#include "platform/linux/processes/LoginItemLinux.hpp"

#include <unistd.h>

#include "platform/RegularFiles.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/processes/AutostartEntry.hpp"

namespace quorvane {
namespace {

constexpr std::uint64_t kLargestEntry = 1 << 20;

struct LoginItem {
    std::filesystem::path file;
    AutostartEntry entry;

    std::int64_t status() const {
        const auto standing = makeLiveRegularFiles().read(file, kLargestEntry);
        if (!standing) return LoginItemClient::kNotRegistered;
        const std::string_view text = textOf(standing->contents);
        if (AutostartEntry::isSwitchedOff(text)) return LoginItemClient::kRequiresApproval;
        return entry.isStartedBy(text) ? LoginItemClient::kEnabled
                                       : LoginItemClient::kNotRegistered;
    }
    Result<void> registerItem() const {
        if (auto made = makePrivateFolders(file.parent_path()); !made) return made;
        return writeFileAtomically(file, bytesOf(entry.text()));
    }
    Result<void> unregisterItem() const {
        if (unlink(file.c_str()) != 0 && errno != ENOENT) return posixError(file);
        return {};
    }
};

std::optional<LoginItem> loginItemOf(const std::filesystem::path& folder,
                                     const ProcessInfo& process) {
    const auto* identifier = find<std::string>(process.bundleProperties, "CFBundleIdentifier");
    const auto executable = executableOfBundle(process.bundle, process.bundleProperties);
    if (identifier == nullptr || !isPlainFileName(*identifier) || !executable) return std::nullopt;
    return LoginItem{folder / (*identifier + ".desktop"),
                     {executable->filename().string(), *executable}};
}

LoginItemClient noLoginItem() {
    const auto fails = []() -> Result<void> {
        return std::unexpected{PlatformError{.description = "only an application in a bundle of a "
                                                            "user with a home is a login item"}};
    };
    return {.status = [] { return LoginItemClient::kNotFound; },
            .registerItem = fails,
            .unregisterItem = fails};
}

}  // namespace

LoginItemClient makeLoginItem(std::optional<std::filesystem::path> autostartFolder,
                              const ProcessInfo& process) {
    if (!autostartFolder) return noLoginItem();
    const auto item = loginItemOf(*autostartFolder, process);
    if (!item) return noLoginItem();
    return {.status = [item = *item] { return item.status(); },
            .registerItem = [item = *item] { return item.registerItem(); },
            .unregisterItem = [item = *item] { return item.unregisterItem(); }};
}

}  // namespace quorvane
