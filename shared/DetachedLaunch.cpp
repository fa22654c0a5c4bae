#include "shared/DetachedLaunch.hpp"

namespace quorvane {

Result<void> DetachedLaunch::launch(const std::filesystem::path& bundle,
                                    const std::vector<std::string>& arguments) const {
    const auto ended = open(bundle, arguments);
    if (!ended) return std::unexpected{ended.error()};
    if (ended->status == 0) return {};
    return std::unexpected{PlatformError{
        .domain = PlatformError::Domain::service,
        .code = ended->status,
        .description = ended->output.empty()
                           ? "open exited with status " + std::to_string(ended->status)
                           : ended->output}};
}

}  // namespace quorvane
