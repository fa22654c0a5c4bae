#include "host/addon/HostStatusQuery.hpp"

#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "host/players/PlayerList.hpp"
#include "platform/Wipe.hpp"

namespace quorvane {

namespace {

constexpr Duration kHostTimeout = std::chrono::seconds{1};
constexpr Duration kAddOnTimeout = std::chrono::milliseconds{500};

}  // namespace

void HostStatusQuery::start(std::function<void(HostStatus)> done) {
    done_ = std::move(done);
    if (services_.applicationSupport)
        status_.place =
            AddOnInstallation::inspect(*services_.applicationSupport, services_.bundleFiles);
    status_.problems = services_.problems.sentences();
    status_.isAddOnRunning = AddOnControl{services_.control}.isRunning();
    readDefaults();
    askHost();
    if (status_.state) askPlayers();
    observation_ = services_.control.notices.observe(
        AddOnSignals::kStatus, [this](const PropertyDictionary& userInfo) {
            const auto answer = AddOnSignals::Status::fromUserInfo(userInfo);
            if (!answer) return;
            status_.addOn = answer;
            finishIfComplete();
        });
    timeout_ = services_.control.clock.after(kAddOnTimeout, [this] { finish(); });
    services_.control.notices.post(AddOnSignals::kStatusRequest, {});
}

void HostStatusQuery::readDefaults() {
    const SharedDefaults defaults{services_.sharedSuite};
    status_.hasSharedDefaults = services_.sharedSuite.has_value();
    status_.isEnabled = defaults.lockScreenEnabled();
    status_.pendingRemoval = defaults.lockScreenPendingRemoval();
    status_.lastSeen = defaults.lockScreenAddOnLastSeen();
    status_.lastLockHadNoRoom = services_.addOnDefaults &&
                                services_.addOnDefaults->get(AddOnSignals::kNoRoomKey).has_value();
}

void HostStatusQuery::askHost() {
    using Failure = HostStatus::Failure;
    const auto port = services_.connectPort(std::string{kMessagePortBaseName});
    if (!port) return;
    auto secret = MessagePortSecret::checked(MessagePortSecret::read(files_));
    if (!secret) return;
    PortReply reply = port->send({.messageID = static_cast<std::int32_t>(MessageType::requestState),
                                  .secret = *secret,
                                  .sendTimeout = kHostTimeout,
                                  .receiveTimeout = kHostTimeout,
                                  .awaitsReply = true});
    wipe(*secret);
    const bool isLate = reply.status == kPortSendTimeout || reply.status == kPortReceiveTimeout;
    status_.state = std::unexpected{isLate ? Failure::late : Failure::noAnswer};
    if (reply.status != kPortSuccess || !reply.body) return;
    auto state = XPCCodableHelpers::decode<QuorvanePlayerState>(*reply.body);
    if (state) status_.state = *std::move(state);
}

void HostStatusQuery::askPlayers() {
    awaitsPlayers_ = true;
    playersObservation_ = services_.control.notices.observe(
        PlayerList::kAnswer, [this](const PropertyDictionary& userInfo) {
            awaitsPlayers_ = false;
            status_.silentPlayers.clear();
            for (const PlayerRow& row : PlayerList::of(userInfo).rows)
                if (row.state == PlayerList::kSilent) status_.silentPlayers.push_back(row.name);
            finishIfComplete();
        });
    services_.darwinNotices.post(PlayerList::kRequest);
}

void HostStatusQuery::finishIfComplete() {
    if (status_.addOn && !awaitsPlayers_) finish();
}

void HostStatusQuery::finish() {
    observation_.reset();
    playersObservation_.reset();
    timeout_.reset();
    if (const auto done = std::exchange(done_, nullptr)) done(status_);
}

}  // namespace quorvane
