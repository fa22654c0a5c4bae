#include "shared/DetachedLaunch.hpp"

namespace quorvane {

std::string DetachedLaunch::Failure::description() const {
    return output.empty() ? "open exited with status " + std::to_string(status) : output;
}

std::expected<void, std::variant<DetachedLaunch::Failure, PlatformError>> DetachedLaunch::launch(
    const std::filesystem::path& bundle, const std::vector<std::string>& arguments) const {
    // A new instance, not brought to the front.
    std::vector<std::string> all{"-n", "-g", bundle.string()};
    if (!arguments.empty()) {
        all.emplace_back("--args");
        all.insert(all.end(), arguments.begin(), arguments.end());
    }
    auto ended = runOpen(all);
    if (!ended) return std::unexpected{std::move(ended.error())};
    if (ended->status != 0)
        return std::unexpected{Failure{ended->status, std::move(ended->output)}};
    return {};
}

}  // namespace quorvane
