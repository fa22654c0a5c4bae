// The tables of this edition that need a display: X11 or Wayland.
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
#include "platform/linux/lockers/X11SessionLinux.hpp"
#include "platform/linux/processes/Confinement.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"
#include "platform/linux/services/LockWatcherLinux.hpp"
#include "platform/linux/services/SessionProblemsLinux.hpp"
#include "platform/linux/wayland/WaylandSessionLinux.hpp"
#include "platform/linux/x11/ToolkitSettings.hpp"

namespace quorvane {
namespace {

// The C library gives each thread its own heap so that threads need not wait for each other. The
// threads here seldom run at once, and each of the five heaps would retain its free memory.
void shareOneHeap() { mallopt(M_ARENA_MAX, 1); }

std::filesystem::path besideExecutable(const char* file) {
    std::error_code error;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
    return executable.parent_path() / file;
}

// What the two displays provide.
struct Display {
    Screens screens;
    LockerSight sight{};
    std::function<std::optional<std::int32_t>()> toolkitAnimates;
    std::function<void(bool isLocked)> lockChanged;
    CardModuleLoader::Entry entry;
    Network network;
    std::shared_ptr<void> session;  // the others refer to it
};

// Members are in construction order; later ones refer to earlier ones.
struct DisplayPlatform {
    DisplayPlatform(const LiveServices& services, Display ofSession)
        : display(std::move(ofSession)),
          watcher(HeadlessPlatform::of(services), display.sight),
          motion(HeadlessPlatform::of(services).sessionBus, display.toolkitAnimates),
          accessibility(HeadlessPlatform::of(services).loop,
                        HeadlessPlatform::of(services).sessionBus,
                        {services.log, kPlatformSubsystem, "accessibility"}),
          cards(besideExecutable(kCardModuleFile),
                {.clock = services.clock,
                 .mainThread = services.mainThread,
                 .log = services.log,
                 .makeSerialQueue = services.makeSerialQueue,
                 .accessibility = &accessibility},
                display.entry),
          lockObservation(watcher.observeLock([this](bool isLocked) {
              if (isLocked) motion.refresh();
              display.lockChanged(isLocked);
          })) {}

    Display display;
    LockWatcherLinux watcher;
    MotionSetting motion;
    AccessibilityLinux accessibility;
    CardModuleLoader cards;
    Handle lockObservation;
};

Result<Display> openX11(const LiveServices& services) {
    const Logger log{services.log, kPlatformSubsystem, "x11"};
    auto& state = HeadlessPlatform::of(services);
    auto opened = X11SessionLinux::open(state.loop, "", [&state, log] {
        log.error("x11: the X server has gone away");
        state.loop.quit(EXIT_FAILURE);
    });
    if (!opened) return std::unexpected(std::move(opened).error());
    const std::shared_ptr<X11SessionLinux> x11 = *std::move(opened);
    return Display{
        .screens = x11->screens(),
        .sight = {.isSeen = [&x = *x11] { return !x.lockerWindows().empty(); },
                  .observe =
                      [&x = *x11](std::function<void()> changed) {
                          return x.observeLockerWindows(std::move(changed));
                      }},
        .toolkitAnimates = [&x = *x11] { return toolkitSetting(x, "Gtk/EnableAnimations"); },
        .lockChanged = [](bool) {},
        .entry = CardModuleLoader::Entry::of<X11Session>(kMakeX11CardWindows, *x11),
        .network = networkForDisplay(environmentVariable("DISPLAY")),
        .session = x11};
}

Display openWayland(const LiveServices& services) {
    const Logger log{services.log, kPlatformSubsystem, "wayland"};
    const std::filesystem::path program = besideExecutable(kSurfaceProgram);
    if (const auto permitted = permitAboveLock(program, services.process); !permitted)
        log.error("wayland: no permission to stand above the lock screen: %{public}s",
                  errorText(permitted.error()));
    const auto wayland =
        std::make_shared<WaylandSessionLinux>(HeadlessPlatform::of(services).loop, program, log);
    return {.screens = wayland->screens(),
            .toolkitAnimates = [] { return std::nullopt; },
            .lockChanged = [&w = *wayland](bool isLocked) { w.setLocked(isLocked); },
            .entry = CardModuleLoader::Entry::of<WaylandSession>(kMakeWaylandCardWindows, *wayland),
            .network = Network::isForbidden,
            .session = wayland};
}

// The display of the session that the add-on runs in.
Result<Display> openDisplay(const LiveServices& services) {
    const SessionVariables session = sessionVariables();
    const auto problem = screenProblem(session);
    if (problem && session.display.empty())
        return std::unexpected(PlatformError{PlatformError::Domain::service, 0, *problem});
    if (problem)
        Logger{services.log, kPlatformSubsystem, "wayland"}.error("wayland: %{public}s", *problem);
    if (!problem && isWaylandSession(session)) return openWayland(services);
    return openX11(services);
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
    auto display = openDisplay(services);
    if (!display) return std::unexpected(std::move(display).error());
    const auto owner = std::make_shared<DisplayPlatform>(services, *std::move(display));
    LivePlatform platform;
    platform.lockSources = owner->watcher.sources();
    platform.screens = owner->display.screens;
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
    platform.confine = [log = Logger{services.log, kPlatformSubsystem, "process"},
                        network = owner->display.network] {
        const auto confined = confineProcess(network);
        if (!confined) log.error("process: not confined: %{public}s", errorText(confined.error()));
    };
    platform.services = std::move(services);
    platform.owner = owner;
    return platform;
}

}  // namespace quorvane
