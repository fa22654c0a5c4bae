#include "AddOnKit/life/LoginItem.hpp"

#include <string>

#include "platform/ErrorText.hpp"

namespace quorvane {
namespace {

void registerLoginItem(const LoginItemClient& client, const Logger& log) {
    if (const auto result = client.registerItem(); !result)
        log.error("login item: register() failed: %{public}s", errorText(result.error()));
    else
        log.info("login item: registered (now %{public}s)", std::to_string(client.status()));
}

}  // namespace

void ensureLoginItemIsRegistered(const LoginItemClient& client, const Logger& log) {
    switch (const std::int64_t status = client.status()) {
        case LoginItemClient::kEnabled: return;
        case LoginItemClient::kNotRegistered:
        case LoginItemClient::kNotFound: return registerLoginItem(client, log);
        case LoginItemClient::kRequiresApproval:
            // Only the user can approve it; registering again would not help.
            return log.info("login item: awaiting approval in Login Items; leaving it alone");
        default:
            log.error("login item: unknown status %{public}s; leaving it alone",
                      std::to_string(status));
    }
}

}  // namespace quorvane
