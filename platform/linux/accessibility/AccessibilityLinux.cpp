#include "platform/linux/accessibility/AccessibilityLinux.hpp"

#include <utility>

#include "platform/linux/bus/BusRequest.hpp"
#include "platform/linux/bus/BusValues.hpp"

namespace quorvane {
namespace {

constexpr char kService[] = "org.a11y.Bus";
constexpr char kPath[] = "/org/a11y/bus";
constexpr char kStatus[] = "org.a11y.Status";

bool isAssistiveTechnologyInUse(const PropertyDictionary& status) {
    const auto isOn = [&](const char* name) {
        const bool* const value = find<bool>(status, name);
        return value && *value;
    };
    return isOn("IsEnabled") || isOn("ScreenReaderEnabled");
}

}  // namespace

AccessibilityLinux::AccessibilityLinux(EventLoop& loop, SessionBus& sessionBus, Logger log)
    : loop_(loop), sessionBus_(sessionBus), log_(std::move(log)) {}

void AccessibilityLinux::appeared(AccessibleCard& card) {
    cards_.push_back(&card);
    if (connection_) connection_->add(card);
    if (cards_.size() == 1) watch();
}

void AccessibilityLinux::changed(AccessibleCard& card) {
    if (connection_) connection_->changed(card);
}

void AccessibilityLinux::disappeared(AccessibleCard& card) {
    std::erase(cards_, &card);
    if (connection_) connection_->remove(card);
    if (!cards_.empty()) return;
    matches_.clear();
    disconnect();
}

void AccessibilityLinux::watch() {
    const auto again = [this] { askWhetherInUse(); };
    matches_.push_back(sessionBus_.match(std::string{"type='signal',path='"} + kPath +
                                             "',interface='" + kBusProperties +
                                             "',member='PropertiesChanged',arg0='" + kStatus + "'",
                                         [again](sd_bus_message*) { again(); }));
    matches_.push_back(sessionBus_.observeOwner(kService, again));
    matches_.push_back(sessionBus_.observeState([this](bool isConnected) {
        if (isConnected) askWhetherInUse();
    }));
    askWhetherInUse();
}

void AccessibilityLinux::askWhetherInUse() {
    const BusMethod getAll{kService, kPath, kBusProperties, "GetAll", {kStatus}};
    question_ = callBus(sessionBus_, getAll, kAnswerDeadline, [this](sd_bus_message* reply) {
        PropertyDictionary status;
        if (reply && readBusDictionary(reply, status) < 0) status.clear();
        if (!isAssistiveTechnologyInUse(status)) return disconnect();
        if (!connection_) askForBus();
    });
}

void AccessibilityLinux::askForBus() {
    const BusMethod getAddress{kService, kPath, kService, "GetAddress"};
    question_ = callBus(sessionBus_, getAddress, kAnswerDeadline, [this](sd_bus_message* reply) {
        const char* address = nullptr;
        if (reply && sd_bus_message_read(reply, "s", &address) > 0) connect(address);
    });
}

void AccessibilityLinux::connect(const std::string& address) {
    connection_ = AtspiConnection::open(loop_, address, [this] {
        // Deferred, because a connection must not be dropped inside its own callback.
        disconnection_ = loop_.clock().after({}, [this] { disconnect(); });
    });
    if (!connection_) return log_.error("accessibility: the accessibility bus cannot be reached");
    log_.info("accessibility: connected");
    for (AccessibleCard* card : cards_) connection_->add(*card);
}

void AccessibilityLinux::disconnect() {
    question_.reset();
    disconnection_.reset();
    if (std::exchange(connection_, nullptr)) log_.info("accessibility: disconnected");
}

}  // namespace quorvane
