// State behind the live tables that need no display. LiveServices::owner points to it.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "platform/LivePlatform.hpp"
#include "platform/linux/bus/BusConnection.hpp"
#include "platform/linux/bus/LocalNotices.hpp"
#include "platform/linux/files/DefaultsFile.hpp"
#include "platform/linux/loop/ApplicationLinux.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// The subsystem of the platform's own log lines.
inline constexpr char kPlatformSubsystem[] = "example.quillon.Quorvane.Platform";

struct HeadlessPlatform {
    explicit HeadlessPlatform(const LogSink& log);

    static HeadlessPlatform& of(const LiveServices& services) {
        return *static_cast<HeadlessPlatform*>(services.owner.get());
    }
    // Nullopt without a home folder, and for a domain that is not a plain file name.
    std::optional<UserDefaults> openDefaults(const std::string& domain);

    EventLoop loop;
    SessionBus sessionBus;
    SystemBus systemBus;
    // The lock watcher delivers the notices of the lock here.
    LocalNotices localNotices;
    ApplicationLinux application{loop};
    Logger defaultsLog;
    // One store per domain across repeated opens, because a store holds the changes not yet
    // written.
    std::map<std::string, std::unique_ptr<DefaultsFile>> defaults;
};

}  // namespace quorvane
