// Collector of the data for `quorvane-host status`.
#pragma once

#include <functional>

#include "host/addon/AddOnCommands.hpp"
#include "host/addon/HostStatus.hpp"
#include "platform/FileStore.hpp"

namespace quorvane {

// Main thread only.
class HostStatusQuery {
public:
    // `files` holds the connection secret.
    HostStatusQuery(AddOnCommands::Services services, FileStore files)
        : services_(std::move(services)), files_(std::move(files)) {}

    // Asks the host, which may take two seconds, then the add-on and the host's players, which have
    // half a second to answer. `done` runs once, later.
    void start(std::function<void(HostStatus)> done);

private:
    void readDefaults();
    void askHost();
    void askPlayers();
    void finishIfComplete();
    void finish();

    AddOnCommands::Services services_;
    FileStore files_;
    HostStatus status_;
    std::function<void(HostStatus)> done_;
    bool awaitsPlayers_ = false;
    Handle observation_;
    Handle playersObservation_;
    Timer timeout_;
};

}  // namespace quorvane
