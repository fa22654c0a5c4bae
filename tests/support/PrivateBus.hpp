// A test's own message bus, in its own folder, without the session's services and without other
// tests.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include "tests/support/ChildProcess.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {

class PrivateBus {
public:
    PrivateBus() { start(); }

    // "" when the bus did not start.
    const std::string& address() const { return address_; }
    std::string environment() const { return "DBUS_SESSION_BUS_ADDRESS=" + address_; }
    // For services that this process makes.
    void useHere() const { setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1); }
    // Ends it at once, as a crash would.
    void kill() { process_.end(SIGKILL); }
    // Starts it again at the same address.
    void start() {
        folder_.write("bus.conf", configuration());
        // A killed bus leaves its socket, and the next one would fail because of it.
        std::filesystem::remove(folder_ / "bus");
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        // Its warnings about limits that it may not raise are relevant only when it fails.
        process_ = ChildProcess{
            {"sh", "-c", "exec dbus-daemon \"$@\" 2>\"$0\"", (folder_ / "log").string(), "--nofork",
             "--nopidfile", "--nosyslog", "--config-file=" + (folder_ / "bus.conf").string(),
             "--print-address=" + std::to_string(ends[1])},
            {},
            ends[1]};
        close(ends[1]);
        const bool isUp = !readLine(ends[0]).empty();
        close(ends[0]);
        // Without the identity that the bus appends, so that the next start has the same address.
        address_ = isUp ? "unix:path=" + (folder_ / "bus").string() : "";
        if (!isUp) std::fputs(folder_.read("log").c_str(), stderr);
    }

private:
    // Allows only the rules below: no services are started, and every client of this user may talk
    // to every other.
    std::string configuration() const {
        return "<busconfig><type>session</type><listen>unix:path=" + (folder_ / "bus").string() +
               "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
               "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
               "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy>"
               "<limit name=\"max_completed_connections\">64</limit></busconfig>";
    }

    TemporaryFolder folder_;
    ChildProcess process_;
    std::string address_;
};

}  // namespace quorvane
