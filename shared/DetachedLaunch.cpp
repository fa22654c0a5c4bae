#include "shared/DetachedLaunch.hpp"

namespace quorvane {

std::string DetachedLaunch::Failure::description() const {
    return output.empty() ? "open exited with status " + std::to_string(status) : output;
}

std::expected<void, std::variant<DetachedLaunch::Failure, PlatformError>> DetachedLaunch::launch(
    const std::filesystem::path& bundle, const std::vector<std::string>& arguments) const {
    auto ended = open(bundle, arguments);
    if (!ended) return std::unexpected{std::move(ended.error())};
    if (ended->status != 0)
        return std::unexpected{Failure{ended->status, std::move(ended->output)}};
    return {};
}

}  // namespace quorvane
