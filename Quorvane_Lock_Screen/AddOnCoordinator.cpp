#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"

#include "AddOnKit/card/PlayerCard.hpp"
#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/LockScreenHelloClient.hpp"
#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {
namespace {

// The version in the log and in the installer's status. The identity in the hello differs only in
// saying "0" instead of "-".
std::string shortVersion(const ProcessInfo& process) {
    const auto* version = find<std::string>(process.bundleProperties, "CFBundleShortVersionString");
    return version == nullptr ? "-" : *version;
}

MessagePortClient::Services clientServices(const LiveServices& services) {
    return {.log = services.log,
            .connectPort = services.connectPort,
            .makeSerialQueue = services.makeSerialQueue,
            .mainThread = services.mainThread,
            .clock = services.clock,
            .darwinNotices = services.darwinNotices};
}

}  // namespace

std::shared_ptr<AddOnCoordinator> AddOnCoordinator::make(const LivePlatform& platform) {
    return std::shared_ptr<AddOnCoordinator>{new AddOnCoordinator{platform}};
}

AddOnCoordinator::AddOnCoordinator(const LivePlatform& platform)
    : platform_(platform),
      log_(platform.services.log, kAddOnBundleIdentifier, "app"),
      playerLog_(platform.services.log, kAddOnBundleIdentifier, "player"),
      client_(
          kMessagePortBaseName,
          [files = platform.services.files] { return MessagePortSecret::read(files); },
          clientServices(platform.services)),
      model_(platform.services.wallClock, platform.decodeImage),
      driver_(platform.services.clock, platform.services.log),
      monitor_(platform.services.distributedNotices, platform.lockSources, platform.services.log) {}

template <typename Action>
auto AddOnCoordinator::weakly(Action action) {
    return [weak = weak_from_this(), action](const auto&... arguments) {
        if (const auto self = weak.lock()) std::invoke(action, *self, arguments...);
    };
}

void AddOnCoordinator::start() {
    log_.info("launch: %{public}s, pid %d", shortVersion(platform_.services.process),
              platform_.services.process.pid);
    startClient();
    makeLink();
    refresher_.emplace(platform_.services.clock, weakly(&AddOnCoordinator::refresh));
    volume_.emplace(platform_.services.clock, weakly(&AddOnCoordinator::sendVolume));
    makeController();
    listenToPresentation();
    startInstallerSignals();
    observe();
    listenToNotices();
    monitor_.start();
    link_->start();
    if (monitor_.isScreenLockedNow()) driver_.handle(event::Locked{});
}

void AddOnCoordinator::startClient() {
    client_.onStateChanged = weakly(&AddOnCoordinator::stateReceived);
    model_.onLateChange = weakly(&AddOnCoordinator::logChange);
    client_.start();
}

void AddOnCoordinator::makeLink() {
    const LiveServices& services = platform_.services;
    link_.emplace(
        AddOnIdentity::make(services.process, services.standardDefaults, services.makeUUID, log_),
        weakly(&AddOnCoordinator::sendHello), services.clock,
        weakly(&AddOnCoordinator::removalRequested), services.log);
    const AddOnIdentity& identity = link_->identity();
    log_.info("link: add-on %{public}s, macOS %{public}s, supported %{bool}d, install %{public}s",
              shortVersion(services.process), identity.macOSVersion, identity.supportsThisMacOS,
              identity.installID);
}

void AddOnCoordinator::makeController() {
    controller_.emplace(
        [this](const Screen& screen, std::shared_ptr<CardStage> stage) {
            return makeContent(screen, std::move(stage));
        },
        CardWindowController::Services{.log = platform_.services.log,
                                       .windows = platform_.cardWindows,
                                       .screens = platform_.screens,
                                       .mainThread = platform_.services.mainThread,
                                       .beginActivity = platform_.beginActivity,
                                       .noteRoom = weakly(&AddOnCoordinator::noteRoom)},
        platform_.windowServerLoader);
}

// For the installer's status, because the installer cannot see the lock screen.
void AddOnCoordinator::noteRoom(bool hasRoom) {
    const UserDefaults& defaults = platform_.services.standardDefaults;
    const bool lackIsNoted = defaults.get(AddOnSignals::kNoRoomKey).has_value();
    if (lackIsNoted == !hasRoom) return;
    defaults.set(AddOnSignals::kNoRoomKey,
                 hasRoom ? std::nullopt : std::optional{PropertyValue{true}});
    static_cast<void>(defaults.synchronize());
}

void AddOnCoordinator::listenToPresentation() {
    driver_.onChange = weakly(&AddOnCoordinator::present);
    driver_.onLocked = weakly(&AddOnCoordinator::sayHelloSoon);
    monitor_.onEvent = weakly(
        [](AddOnCoordinator& self, const PresentationEvent& event) { self.driver_.handle(event); });
}

void AddOnCoordinator::startInstallerSignals() {
    installerSignals_.emplace(shortVersion(platform_.services.process),
                              platform_.services.distributedNotices,
                              weakly(&AddOnCoordinator::quitRequested), platform_.services.log);
    installerSignals_->start();
}

// Changes from before the subscriptions count too; the driver ignores repeated values.
void AddOnCoordinator::observe() {
    observations_.push_back(
        link_->configuration().subscribe(weakly(&AddOnCoordinator::linkChanged)));
    observations_.push_back(
        client_.isConnected().subscribe(weakly(&AddOnCoordinator::connectionChanged)));
    observations_.push_back(model_.isVisible.subscribe(weakly(&AddOnCoordinator::musicChanged)));
    observations_.push_back(
        model_.isDraggingVolume.subscribe(weakly(&AddOnCoordinator::draggingChanged)));
    linkChanged();
    connectionChanged();
    musicChanged();
}

void AddOnCoordinator::listenToNotices() {
    const DarwinNotices& notices = platform_.services.darwinNotices;
    noticeObservers_.push_back(
        notices.observe(QuorvaneDarwinNotification::lockScreenConfigurationChanged,
                        weakly(&AddOnCoordinator::configurationNotice)));
    noticeObservers_.push_back(
        notices.observe(QuorvaneDarwinNotification::mainAppWillTerminate,
                        weakly(&AddOnCoordinator::mainAppWillTerminateNotice)));
}

// A removal is not treated as a change of the permission. The removal request follows at once and
// closes the windows in its own order, so that a drag that ends with them sends no command.
void AddOnCoordinator::linkChanged() {
    if (link_->configuration().get().removalRequested) return;
    driver_.handle(event::Link{link_->allowsPlayer()});
}

void AddOnCoordinator::connectionChanged() {
    installerSignals_->setConnected(client_.isConnected().get());
}

void AddOnCoordinator::musicChanged() { driver_.handle(event::Music{model_.isVisible.get()}); }

void AddOnCoordinator::draggingChanged() {
    if (model_.isDraggingVolume.get()) volume_->beginDrag();
}

void AddOnCoordinator::present(const PresentationState& state) {
    if (isRemoving_) return;
    controller_->present(state);
    // Closing a window may wait for a send, during which a newer state may have arrived.
    const bool isWanted = driver_.state().windowsWanted();
    client_.setPolling(isWanted);
    refresher_->setActive(isWanted);
}

void AddOnCoordinator::sendHello(const LockScreenAddOnHello& hello,
                                 const AddOnLink::HelloCompletion& completion) {
    const auto sendQuery = [this](auto&&... query) {
        client_.sendQuery(std::forward<decltype(query)>(query)...);
    };
    sendLockScreenHello(hello, sendQuery, log_, completion);
}

// Posted as a separate task, so that the lock event is fully handled first.
void AddOnCoordinator::sayHelloSoon() {
    platform_.services.mainThread.post(
        weakly([](AddOnCoordinator& self) { self.link_->sayHello(); }));
}

void AddOnCoordinator::configurationNotice() {
    log_.standard("notice: lockScreenConfigurationChanged; saying hello");
    link_->sayHello();
}

void AddOnCoordinator::mainAppWillTerminateNotice() {
    log_.standard("notice: mainAppWillTerminate; hiding the card");
    clearModel();
    log_.standard("state: %{public}s", describe(driver_.state()));
}

void AddOnCoordinator::stateReceived(const QuorvanePlayerState& state) {
    if (const auto change = model_.apply(state)) logChange(*change);
}

void AddOnCoordinator::logChange(const PlayerModel::Change& change) {
    playerLog_.info("state: %{public}s", change.summary);
    if (change.newTrack)
        playerLog_.info("state: now '%{private}s' — '%{private}s'", change.newTrack->title,
                        change.newTrack->artist);
}

void AddOnCoordinator::connectIfNeeded() {
    if (!client_.isConnected().get()) client_.start();
}

void AddOnCoordinator::refresh() {
    connectIfNeeded();
    client_.requestStateUpdate();
    if (!client_.isConnected().get()) clearModel();
}

void AddOnCoordinator::clearModel() {
    if (const auto summary = model_.clear())
        playerLog_.info("state: Quorvane unreachable; %{public}s", *summary);
}

void AddOnCoordinator::command(QuorvaneAction action, ModelEdit edit) {
    if (isRemoving_) return;
    log_.standard("command: %{public}s", actionName(action));
    connectIfNeeded();
    // After connecting, because the state that a new connection brings is older than the user's
    // edit.
    if (edit != nullptr) (model_.*edit)();
    client_.perform(action);
    refresher_->nudge();
}

void AddOnCoordinator::setVolume(std::int64_t level) {
    log_.standard("volume: step to %ld", level);
    model_.setVolume(level);
    volume_->submit(level);
}

void AddOnCoordinator::endVolume() {
    log_.standard("volume: drag ended at %ld", model_.volume.get());
    model_.endVolumeDrag();
    volume_->flush();
}

void AddOnCoordinator::sendVolume(std::int64_t level) {
    if (isRemoving_) return;
    const std::uint64_t mine = ++volumeCount_;
    connectIfNeeded();
    // A newer volume sent during the wait takes precedence.
    if (mine == volumeCount_) client_.setVolume(level);
}

PlayerActions AddOnCoordinator::playerActions() {
    const auto sends = [this](QuorvaneAction action, ModelEdit edit = nullptr) {
        return weakly([action, edit](AddOnCoordinator& self) { self.command(action, edit); });
    };
    return {.playPause = sends(QuorvaneAction::playPause, &PlayerModel::togglePlayPause),
            .next = sends(QuorvaneAction::nextTrack),
            .previous = sends(QuorvaneAction::previousTrack),
            .toggleLove = sends(QuorvaneAction::toggleLove, &PlayerModel::toggleLove),
            .setVolume = weakly(&AddOnCoordinator::setVolume),
            .endVolume = weakly(&AddOnCoordinator::endVolume)};
}

std::unique_ptr<CardContent> AddOnCoordinator::makeContent(const Screen& screen,
                                                           std::shared_ptr<CardStage> stage) {
    return std::make_unique<PlayerCard>(
        model_, playerActions(), std::move(stage),
        PlayerCardEnvironment{.clock = platform_.services.clock,
                              .wallClock = platform_.services.wallClock,
                              .reducesMotion = platform_.cardWindows.reducesMotion,
                              .isRightToLeft = platform_.isRightToLeft,
                              .view = {.localized = platform_.localized,
                                       .measureText = platform_.cardWindows.measureText,
                                       .widestMovedText = platform_.cardWindows.widestMovedText,
                                       .scale = screen.scale}});
}

void AddOnCoordinator::removalRequested() {
    if (isRemoving_) return;
    isRemoving_ = true;
    log_.standard("removal: closing the windows");
    installerSignals_->stop();
    refresher_->stop();
    volume_->cancel();
    observations_.clear();
    monitor_.stop();
    controller_->present(PresentationState{});
    client_.stop();
}

void AddOnCoordinator::quitRequested() {
    log_.standard("installer: quitting");
    platform_.services.application.terminate();
}

void AddOnCoordinator::willTerminate() {
    if (refresher_) refresher_->stop();
    if (controller_) controller_->present(PresentationState{});
}

}  // namespace quorvane
