// The add-on's installation in memory: its login item, its files, its running copies.
#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "platform/LivePlatform.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {

struct FakeInstallation {
    static constexpr RunningCopy kMe{4711, ManualClock::kStart};

    std::int64_t loginItem = LoginItemClient::kEnabled;
    // Each with its identifier; their parent folders exist too.
    std::map<std::filesystem::path, std::string> bundles;
    std::vector<RunningCopy> copies{kMe};  // this one last
    bool loginItemRefuses = false;
    std::vector<std::int32_t> asked{};  // asked to quit
    int calls = 0;                      // of operations that may fail
    int failing = 0;                    // the number of the call that fails

    Installation table() {
        return {.loginItem = {.status = [this] { return loginItem; },
                              .registerItem = [this] { return setLoginItem(1); },
                              .unregisterItem = [this] { return setLoginItem(0); }},
                .fileManager = {.removeItem = [this](const auto& path) { return remove(path); },
                                .fileExists = [this](const auto& path) { return exists(path); },
                                .identity = [this](const auto& path) { return identity(path); }},
                .runningApplications = {
                    .running = [this](const auto&) { return copies; },
                    .current = [this] { return copies.back(); },
                    .terminate = [this](std::int32_t pid) { asked.push_back(pid); }},
                .openApplication = [](const auto&, const auto&) -> Result<OpenCommandEnd> {
                    return OpenCommandEnd{};
                },
                .applicationSupport = "/support"};
    }

private:
    Result<void> setLoginItem(std::int64_t status) {
        if (loginItemRefuses || ++calls == failing)
            return std::unexpected{PlatformError{.code = 1, .description = "no agent"}};
        loginItem = status;
        return {};
    }
    static auto liesAt(const std::filesystem::path& path) {
        return [place = path.string()](const auto& bundle) {
            return bundle.first.string().starts_with(place);
        };
    }
    bool exists(const std::filesystem::path& path) const {
        return std::ranges::any_of(bundles, liesAt(path));
    }
    Result<void> remove(const std::filesystem::path& path) {
        if (!exists(path))
            return std::unexpected{PlatformError{PlatformError::Domain::cocoa, 4, "no such file"}};
        if (++calls == failing)
            return std::unexpected{PlatformError{PlatformError::Domain::cocoa, 13, "denied"}};
        std::erase_if(bundles, liesAt(path));
        return {};
    }
    std::optional<std::string> identity(const std::filesystem::path& path) const {
        const auto bundle = bundles.find(path);
        if (bundle == bundles.end()) return std::nullopt;
        return bundle->second;
    }
};

}  // namespace quorvane
