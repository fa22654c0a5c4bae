// The add-on's long-lived root object: owns every part and connects their callbacks. It only
// decides the order of start and stop and where each event goes.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "AddOnKit/life/InstallerSignals.hpp"
#include "AddOnKit/link/AddOnLink.hpp"
#include "AddOnKit/player/PlayerActions.hpp"
#include "AddOnKit/player/PlayerModel.hpp"
#include "AddOnKit/player/StateRefresher.hpp"
#include "AddOnKit/player/VolumeSender.hpp"
#include "AddOnKit/presentation/PresentationDriver.hpp"
#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "Quorvane_Lock_Screen/CardWindowController.hpp"
#include "Quorvane_Lock_Screen/LockMonitor.hpp"
#include "platform/LivePlatform.hpp"

namespace quorvane {

// Main thread only. Created with the application's delegate and kept until the process ends. Shared
// only so that callbacks can hold it weakly.
class AddOnCoordinator : public std::enable_shared_from_this<AddOnCoordinator> {
public:
    // `platform` outlives the coordinator. Starts no part.
    static std::shared_ptr<AddOnCoordinator> make(const LivePlatform& platform);

    // Called once, when this copy of the add-on may run.
    void start();
    // The orderly end of the process: closes all windows.
    void willTerminate();

private:
    explicit AddOnCoordinator(const LivePlatform& platform);

    // Returns a callback that runs the action on the coordinator, which stays alive during it, and
    // has no effect once the coordinator is destroyed.
    template <typename Action>
    auto weakly(Action action);

    // The steps of start(), in order.
    void startClient();
    void makeLink();
    void makeController();
    void listenToPresentation();
    void startInstallerSignals();
    void observe();
    void listenToNotices();

    void stateReceived(const QuorvanePlayerState& state);
    void logChange(const PlayerModel::Change& change);
    void refresh();
    void clearModel();
    // Sends a command and makes its immediate change to the card.
    using ModelEdit = void (PlayerModel::*)();
    void command(QuorvaneAction action, ModelEdit edit);
    void setVolume(std::int64_t level);
    void endVolume();
    void sendVolume(std::int64_t level);
    void present(const PresentationState& state);
    void noteRoom(bool hasRoom);
    void sendHello(const LockScreenAddOnHello& hello, const AddOnLink::HelloCompletion& completion);
    void sayHelloSoon();
    void configurationNotice();
    void mainAppWillTerminateNotice();
    void linkChanged();
    void connectionChanged();
    void musicChanged();
    void draggingChanged();
    void removalRequested();
    void quitRequested();

    void connectIfNeeded();
    PlayerActions playerActions();
    std::unique_ptr<CardContent> makeContent(const Screen& screen,
                                             std::shared_ptr<CardStage> stage);

    const LivePlatform& platform_;
    Logger log_;
    Logger playerLog_;
    MessagePortClient client_;
    PlayerModel model_;
    PresentationDriver driver_;
    LockMonitor monitor_;
    std::optional<AddOnLink> link_;
    std::optional<InstallerSignals> installerSignals_;
    std::optional<CardWindowController> controller_;
    std::optional<StateRefresher> refresher_;
    std::optional<VolumeSender> volume_;
    std::vector<Handle> noticeObservers_;
    std::vector<Handle> observations_;
    bool isRemoving_ = false;  // set once, never cleared
    std::uint64_t volumeCount_ = 0;
};

}  // namespace quorvane
