#include "platform/linux/LogindLinux.hpp"

#include <systemd/sd-login.h>
#include <unistd.h>

#include <cstdlib>
#include <system_error>
#include <utility>

#include "platform/linux/BusQuestion.hpp"
#include "platform/linux/BusValues.hpp"

namespace quorvane {
namespace {

constexpr char kService[] = "org.freedesktop.login1";
constexpr char kPath[] = "/org/freedesktop/login1";
constexpr char kManager[] = "org.freedesktop.login1.Manager";
constexpr char kSession[] = "org.freedesktop.login1.Session";
constexpr char kSessions[] = "/org/freedesktop/login1/session";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr char kLockedHint[] = "LockedHint";
constexpr auto kAnswerDeadline = std::chrono::seconds{5};

std::string taken(char* text) {
    const std::string copy = text ? text : "";
    std::free(text);
    return copy;
}

// The session that this process was started in. A service of the user's is in none: it belongs to
// the one that the user sees.
std::string sessionName() {
    if (const char* name = std::getenv("XDG_SESSION_ID"); name && *name) return name;
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

LogindLinux::LogindLinux(EventLoop& loop, Logger log, Events events) : events_(std::move(events)) {
    int result = connect(loop);
    if (result >= 0) result = observe();
    if (result >= 0) return;
    bus_ = sd_bus_close_unref(bus_);
    log.info("logind: not available: %{public}s", std::system_category().message(-result));
}

LogindLinux::~LogindLinux() {
    question_.reset();
    sd_bus_flush_close_unref(bus_);
}

int LogindLinux::connect(EventLoop& loop) {
    const int result = sd_bus_open_system(&bus_);
    if (result < 0) return result;
    return sd_bus_attach_event(bus_, loop.event(), SD_EVENT_PRIORITY_NORMAL);
}

// The slots live as long as the connection.
int LogindLinux::observe() {
    const auto onSleep = [](sd_bus_message* message, void* self, sd_bus_error*) {
        static_cast<LogindLinux*>(self)->onPrepareForSleep(message);
        return 0;
    };
    const auto onProperties = [](sd_bus_message* message, void* self, sd_bus_error*) {
        static_cast<LogindLinux*>(self)->onPropertiesChanged(message);
        return 0;
    };
    const int result = sd_bus_match_signal_async(bus_, nullptr, kService, kPath, kManager,
                                                 "PrepareForSleep", onSleep, nullptr, this);
    sessionPath_ = sessionPath();
    if (result < 0 || sessionPath_.empty()) return result;
    const int second =
        sd_bus_match_signal_async(bus_, nullptr, kService, sessionPath_.c_str(), kProperties,
                                  "PropertiesChanged", onProperties, nullptr, this);
    if (second >= 0) askForHint();
    return second;
}

void LogindLinux::askForHint() {
    const auto call = newBusQuestion(bus_, kService, sessionPath_, kProperties, "Get");
    if (call) sd_bus_message_append(call.get(), "ss", kSession, kLockedHint);
    question_ = askBus(bus_, call, kAnswerDeadline, [this](sd_bus_message* reply) {
        int isLocked = 0;
        if (reply && sd_bus_message_read(reply, "v", "b", &isLocked) >= 0) setLocked(isLocked != 0);
    });
}

void LogindLinux::onPropertiesChanged(sd_bus_message* message) {
    const char* interface = nullptr;
    PropertyDictionary changed;
    if (sd_bus_message_read(message, "s", &interface) < 0 ||
        std::string_view{interface} != kSession)
        return;
    if (readBusDictionary(message, changed) < 0) return;
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
