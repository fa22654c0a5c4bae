// The tables of this edition that need the X11 session.
#include <malloc.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "drawing/pictures/EncodedImage.hpp"
#include "platform/LivePlatform.hpp"
#include "platform/linux/CardModuleLoader.hpp"
#include "platform/linux/accessibility/AccessibilityLinux.hpp"
#include "platform/linux/bus/MotionSetting.hpp"
#include "platform/linux/files/Environment.hpp"
#include "platform/linux/language/Translations.hpp"
#include "platform/linux/language/UserLanguage.hpp"
#include "platform/linux/lockers/LockWatcherLinux.hpp"
#include "platform/linux/lockers/X11SessionLinux.hpp"
#include "platform/linux/processes/Confinement.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"
#include "platform/linux/services/SessionProblemsLinux.hpp"
#include "platform/linux/x11/ToolkitSettings.hpp"

namespace quorvane {
namespace {

// The C library gives each thread its own heap so that threads need not wait for each other. The
// threads here seldom run at once, and each of the five heaps would retain its free memory.
void shareOneHeap() { mallopt(M_ARENA_MAX, 1); }

std::filesystem::path moduleFile() {
    std::error_code error;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
    return executable.parent_path() / kCardModuleFile;
}

// Members are in construction order; later ones refer to earlier ones.
struct DisplayPlatform {
    DisplayPlatform(const LiveServices& services, std::unique_ptr<X11SessionLinux> session)
        : x11(std::move(session)),
          watcher(HeadlessPlatform::of(services), *x11),
          motion(HeadlessPlatform::of(services).sessionBus,
                 [this] { return toolkitSetting(*x11, "Gtk/EnableAnimations"); }),
          accessibility(HeadlessPlatform::of(services).loop,
                        HeadlessPlatform::of(services).sessionBus,
                        {services.log, kPlatformSubsystem, "accessibility"}),
          cards(moduleFile(), {.x11 = *x11,
                               .clock = services.clock,
                               .mainThread = services.mainThread,
                               .log = services.log,
                               .makeSerialQueue = services.makeSerialQueue,
                               .accessibility = &accessibility}),
          motionRefreshes(watcher.observeLocking([this] { motion.refresh(); })) {}

    std::unique_ptr<X11SessionLinux> x11;
    LockWatcherLinux watcher;
    MotionSetting motion;
    AccessibilityLinux accessibility;
    CardModuleLoader cards;
    Handle motionRefreshes;
};

Result<std::unique_ptr<X11SessionLinux>> openSession(const LiveServices& services) {
    const Logger log{services.log, kPlatformSubsystem, "x11"};
    const auto display = environmentVariable("DISPLAY");
    const auto problem = screenProblem(display, environmentVariable("WAYLAND_DISPLAY"));
    if (problem && display.empty())
        return std::unexpected(PlatformError{PlatformError::Domain::service, 0, *problem});
    if (problem) log.error("x11: %{public}s", *problem);
    auto& state = HeadlessPlatform::of(services);
    return X11SessionLinux::open(state.loop, "", [&state, log] {
        log.error("x11: the X server has gone away");
        state.loop.quit(EXIT_FAILURE);
    });
}

ImageRef decodeImage(ByteView encoded) {
    // The bytes are decoded on first drawing, so that the drawing libraries are not loaded before
    // that.
    if (!pictureType(encoded)) return nullptr;
    return std::make_shared<EncodedImage>(copyOf(encoded), Image::State::arriving);
}

}  // namespace

Result<LivePlatform> makeLivePlatform(LiveServices services) {
    shareOneHeap();
    auto session = openSession(services);
    if (!session) return std::unexpected(std::move(session).error());
    const auto owner = std::make_shared<DisplayPlatform>(services, *std::move(session));
    LivePlatform platform;
    platform.lockSources = owner->watcher.sources();
    platform.screens = owner->x11->screens();
    platform.cardWindows = owner->cards.windows();
    platform.cardWindows.reducesMotion = [state = owner.get()] {
        return state->motion.isReduced();
    };
    platform.decodeImage = decodeImage;
    // This system does not slow down or suspend background processes, so an empty handle is enough.
    platform.beginActivity = [](std::uint64_t, const std::string&) { return Handle{[] {}}; };
    const std::vector<std::string> locales = preferredLocales();
    platform.localized = [texts = Translations{locales}](const std::string& key) {
        return texts.text(key);
    };
    platform.isRightToLeft = [isRightToLeft =
                                  !locales.empty() && isRightToLeftLocale(locales.front())] {
        return isRightToLeft;
    };
    platform.confine = [log = Logger{services.log, kPlatformSubsystem, "process"}] {
        const auto confined = confineProcess(networkForDisplay(environmentVariable("DISPLAY")));
        if (!confined) log.error("process: not confined: %{public}s", errorText(confined.error()));
    };
    platform.services = std::move(services);
    platform.owner = owner;
    return platform;
}

}  // namespace quorvane
