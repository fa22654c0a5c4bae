// The tables of this edition that need a display: X11 or Wayland.
#include <malloc.h>

#include <filesystem>
#include <system_error>
#include <utility>

#include "drawing/pictures/EncodedImage.hpp"
#include "platform/LivePlatform.hpp"
#include "platform/linux/CardModuleLoader.hpp"
#include "platform/linux/DisplayModule.hpp"
#include "platform/linux/accessibility/AccessibilityLinux.hpp"
#include "platform/linux/bus/MotionSetting.hpp"
#include "platform/linux/bus/ScreenSaverService.hpp"
#include "platform/linux/bus/ScreenSaverSignals.hpp"
#include "platform/linux/language/Translations.hpp"
#include "platform/linux/language/UserLanguage.hpp"
#include "platform/linux/processes/Confinement.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"
#include "platform/linux/services/LockWatcherLinux.hpp"
#include "platform/linux/services/SessionProblemsLinux.hpp"

namespace quorvane {
namespace {

// The C library gives each thread its own heap so that threads need not wait for each other. The
// threads here seldom run at once, and each of the five heaps would retain its free memory.
void shareOneHeap() { mallopt(M_ARENA_MAX, 1); }

std::filesystem::path folderOfExecutable() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

// Members are in construction order; later ones refer to earlier ones.
struct DisplayPlatform {
    DisplayPlatform(const LiveServices& services, Display ofSession)
        : display(std::move(ofSession)),
          watcher(HeadlessPlatform::of(services), display.detector),
          detectorService(HeadlessPlatform::of(services).sessionBus, kAddOnDetectorService),
          motion(HeadlessPlatform::of(services).sessionBus, display.toolkitAnimates),
          accessibility(HeadlessPlatform::of(services).loop,
                        HeadlessPlatform::of(services).sessionBus,
                        {services.log, kPlatformSubsystem, "accessibility"}),
          cards(folderOfExecutable() / display.cardModule,
                {.clock = services.clock,
                 .mainThread = services.mainThread,
                 .log = services.log,
                 .makeSerialQueue = services.makeSerialQueue,
                 .accessibility = &accessibility},
                display.cardSession),
          lockObservation(watcher.observeLock([this](bool isLocked) {
              if (isLocked) motion.refresh();
              display.lockChanged(isLocked);
          })) {
        if (display.detector.isDetected) serveDetection();
    }

    // Announces detected lock screens to the host, which has no display.
    void serveDetection() {
        const auto update = [this] { detectorService.set(*display.detector.isDetected()); };
        update();
        detection = display.detector.observe(update);
        detectorService.keepServing();
    }

    Display display;
    LockWatcherLinux watcher;
    ScreenSaverService detectorService;
    MotionSetting motion;
    AccessibilityLinux accessibility;
    CardModuleLoader cards;
    Handle lockObservation;
    Handle detection;
};

Result<Display> openModule(const char* module, const LiveServices& services, const Logger& log) {
    const std::filesystem::path folder = folderOfExecutable();
    const auto function = functionOfModule(folder / module, kOpenDisplay);
    if (!function) return std::unexpected(function.error());
    return reinterpret_cast<OpenDisplay>(*function)(
        {HeadlessPlatform::of(services).loop, log, folder});
}

// The display of the session that the add-on runs in.
Result<Display> openDisplay(const SessionVariables& session, const LiveServices& services) {
    const Logger wayland{services.log, kPlatformSubsystem, "wayland"};
    const auto problem = screenProblem(session);
    if (problem && session.display.empty())
        return std::unexpected(PlatformError{PlatformError::Domain::service, 0, *problem});
    if (problem) wayland.error("wayland: %{public}s", *problem);
    if (problem || !isWaylandSession(session))
        return openModule(kX11Module, services, {services.log, kPlatformSubsystem, "x11"});
    const std::filesystem::path program = folderOfExecutable() / kSurfaceProgram;
    if (waylandSupport(session.desktop)->needsKdeOverlay)
        if (const auto permitted = permitAboveLock(program, services.process); !permitted)
            wayland.error("wayland: no permission to appear above the lock screen: %{public}s",
                          errorText(permitted.error()));
    return openModule(kWaylandModule, services, wayland);
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
    const SessionVariables session = sessionVariables();
    auto display = openDisplay(session, services);
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
                        network = owner->display.mayBeRemote ? networkForDisplay(session.display)
                                                             : Network::isForbidden] {
        const auto confined = confineProcess(network);
        if (!confined) log.error("process: not confined: %{public}s", errorText(confined.error()));
    };
    platform.services = std::move(services);
    platform.owner = owner;
    return platform;
}

}  // namespace quorvane
