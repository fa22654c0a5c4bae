#include "platform/linux/bus/MotionSetting.hpp"

#include "platform/linux/bus/BusRequest.hpp"
#include "platform/linux/bus/BusValues.hpp"

namespace quorvane {
namespace {

constexpr char kPortal[] = "org.freedesktop.portal.Desktop";
constexpr char kPortalPath[] = "/org/freedesktop/portal/desktop";
constexpr char kSettings[] = "org.freedesktop.portal.Settings";
constexpr char kAppearance[] = "org.freedesktop.appearance";
constexpr char kGnomeInterface[] = "org.gnome.desktop.interface";
constexpr auto kSettingDeadline = std::chrono::seconds{2};

}  // namespace

void MotionSetting::refresh() {
    sd_bus* bus = bus_.connection();
    const auto call = newBusRequest(bus, {kPortal, kPortalPath, kSettings, "ReadAll"});
    if (call) sd_bus_message_append(call.get(), "as", 2, kAppearance, kGnomeInterface);
    const auto decide = [this](const PropertyDictionary& settings) {
        isReduced_ = reducesMotion(settings).value_or(toolkitAnimates_() == 0);
    };
    question_ = sendBusRequest(bus, call, kSettingDeadline, [decide](sd_bus_message* reply) {
        PropertyDictionary settings;
        if (reply && readBusDictionary(reply, settings) < 0) settings.clear();
        decide(settings);
    });
    if (!question_) decide({});
}

std::optional<bool> reducesMotion(const PropertyDictionary& settings) {
    if (const auto* appearance = find<PropertyDictionary>(settings, kAppearance))
        if (const auto* isReduced = find<std::int64_t>(*appearance, "reduced-motion"))
            return *isReduced == 1;
    if (const auto* interface = find<PropertyDictionary>(settings, kGnomeInterface))
        if (const auto* isAnimated = find<bool>(*interface, "enable-animations"))
            return !*isAnimated;
    return std::nullopt;
}

}  // namespace quorvane
