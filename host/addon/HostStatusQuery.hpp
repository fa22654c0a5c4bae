// Collector of the data for `quorvane-host status`.
#pragma once

#include <functional>
#include <optional>

#include "host/addon/HostStatus.hpp"
#include "platform/DistributedNotices.hpp"
#include "platform/FileStore.hpp"
#include "platform/MessagePort.hpp"
#include "platform/SessionProblems.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

// Main thread only.
class HostStatusQuery {
public:
    struct Services {
        ConnectPort connectPort;
        FileStore files;
        Clock clock;
        DistributedNotices distributedNotices;
        std::optional<UserDefaults> sharedSuite;
        std::optional<UserDefaults> addOnDefaults;
        std::function<AddOnInstallation()> lookAtPlace;
        std::function<bool()> isAddOnRunning;
        SessionProblems problems{};
    };

    explicit HostStatusQuery(Services services) : services_(std::move(services)) {}

    // Asks the host, which may take two seconds, then the add-on, which has half a second to
    // answer. `done` runs once, later.
    void start(std::function<void(HostStatus)> done);

private:
    void readDefaults();
    void askHost();
    void finish();

    Services services_;
    HostStatus status_;
    std::function<void(HostStatus)> done_;
    Handle observation_;
    Timer timeout_;
};

}  // namespace quorvane
