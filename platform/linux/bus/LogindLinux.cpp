#include "platform/linux/bus/LogindLinux.hpp"

#include <systemd/sd-login.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

#include "platform/linux/bus/BusRequest.hpp"
#include "platform/linux/bus/BusValues.hpp"
#include "platform/linux/files/Environment.hpp"

namespace quorvane {
namespace {

constexpr char kService[] = "org.freedesktop.login1";
constexpr char kManagerPath[] = "/org/freedesktop/login1";
constexpr char kManager[] = "org.freedesktop.login1.Manager";
constexpr char kSession[] = "org.freedesktop.login1.Session";
constexpr char kSessions[] = "/org/freedesktop/login1/session";
constexpr char kLockedHint[] = "LockedHint";

std::string taken(char* text) {
    const std::string copy = text ? text : "";
    std::free(text);
    return copy;
}

// The session that this process was started in. A user service has no session and uses the one on
// the user's screen.
std::string sessionName() {
    if (const auto name = environmentVariable("XDG_SESSION_ID"); !name.empty())
        return std::string{name};
    char* name = nullptr;
    if (sd_pid_get_session(0, &name) >= 0 || sd_uid_get_display(getuid(), &name) >= 0)
        return taken(name);
    return {};
}

std::string sessionPath() {
    const std::string name = sessionName();
    char* path = nullptr;
    if (name.empty() || sd_bus_path_encode(kSessions, name.c_str(), &path) < 0) return {};
    return taken(path);
}

}  // namespace

LogindLinux::LogindLinux(BusConnection& bus, Events events)
    : bus_(bus), events_(std::move(events)), sessionPath_(sessionPath()) {
    const std::string fromService = std::string{"type='signal',sender='"} + kService + "',path='";
    observe(fromService + kManagerPath + "',interface='" + kManager + "',member='PrepareForSleep'",
            &LogindLinux::onPrepareForSleep);
    if (sessionPath_.empty()) return;
    observe(fromService + sessionPath_ + "',interface='" + kBusProperties +
                "',member='PropertiesChanged',arg0='" + kSession + "'",
            &LogindLinux::onPropertiesChanged);
    observations_.push_back(bus_.observeOwner(kService, [this] { askForHint(); }));
    observations_.push_back(bus_.observeState([this](bool isConnected) {
        if (isConnected)
            askForHint();
        else
            setLocked(false);
    }));
    askForHint();
}

void LogindLinux::observe(const std::string& rule, void (LogindLinux::*handler)(sd_bus_message*)) {
    observations_.push_back(
        bus_.match(rule, [this, handler](sd_bus_message* message) { (this->*handler)(message); }));
}

void LogindLinux::askForHint() {
    const BusMethod get{kService, sessionPath_, kBusProperties, "Get", {kSession, kLockedHint}};
    question_ = callBus(bus_, get, kAnswerDeadline, [this](sd_bus_message* reply) {
        int isLocked = 0;
        setLocked(reply && sd_bus_message_read(reply, "v", "b", &isLocked) >= 0 && isLocked != 0);
    });
}

void LogindLinux::onPropertiesChanged(sd_bus_message* message) {
    PropertyDictionary changed;
    if (sd_bus_message_skip(message, "s") < 0 || readBusDictionary(message, changed) < 0) return;
    if (const bool* isLocked = find<bool>(changed, kLockedHint)) setLocked(*isLocked);
}

void LogindLinux::onPrepareForSleep(sd_bus_message* message) {
    int isGoingToSleep = 0;
    if (sd_bus_message_read(message, "b", &isGoingToSleep) >= 0 && isGoingToSleep == 0)
        events_.woke();
}

void LogindLinux::setLocked(bool isLocked) {
    if (std::exchange(isLocked_, isLocked) != isLocked) events_.lockedHintChanged();
}

}  // namespace quorvane
