// A whole platform in memory, with the main application behind its ports. Only the test moves it.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "platform/LivePlatform.hpp"
#include "tests/support/FakeCardWindows.hpp"
#include "tests/support/FakeInstallation.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/ManualSerialQueues.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {

inline constexpr char kStateChanged[] = "example.quillon.Quorvane.playerStateChanged";

// Which call of the operations that may fail does fail.
struct Faults {
    int calls = 0;
    int failing = 0;         // the number of the call, from 1; 0: none
    bool isLasting = false;  // every later one fails too

    bool hit() {
        ++calls;
        return failing != 0 && (calls == failing || (isLasting && calls > failing));
    }
};

// The main application's end of the link: it plays one track and records its requests.
class ScriptedMainApp {
public:
    Bytes secret = Bytes(MessagePortWire::kSecretLength, std::byte{7});
    QuorvanePlayerState state;
    LockScreenAddOnConfiguration configuration{true, false, "1.0.0"};
    bool lies = false;                  // its answers are not records
    std::vector<std::string> commands;  // in order: "nextTrack", "volume 40"
    std::vector<LockScreenAddOnHello> hellos;
    int stateRequests = 0;
    int strangers = 0;  // requests without the secret

    ScriptedMainApp(MemoryPorts& ports, WallClock now) : ports_(ports), now_(std::move(now)) {
        play("Reed", "Marsh");
        launch();
    }

    void play(const std::string& title, const std::string& artist) {
        XPCTrack& track = state.track.emplace();
        track.title = title;
        track.artist = artist;
        track.duration = 200;
        track.artworkData = SharedBytes{copyOf(bytesOf("cover of " + title))};
        state.playerState = XPCPlayerState::playing;
        state.playerType = XPCPlayerType::appleMusic;
        state.volume = 50;
    }
    void launch() {
        const auto serve = [this](const std::string& name) {
            served_.push_back(ports_.serve(name, [this](std::int32_t identifier, ByteView body) {
                return answer(identifier, body);
            }));
        };
        serve(std::string{kMessagePortBaseName});
        for (std::size_t index = 0; index < kQueryPortCount; ++index)
            serve(queryPortName(kMessagePortBaseName, index));
    }
    void quit() { served_.clear(); }

private:
    Bytes answer(std::int32_t identifier, ByteView body) {
        const auto payload = MessagePortWire::unwrap(body, secret);
        if (!payload) {
            ++strangers;
            return {};
        }
        const auto first = payload->empty() ? 0 : std::to_integer<int>(payload->front());
        switch (messageType(identifier).value()) {
            case MessageType::requestState:
                ++stateRequests;
                state.timestamp = now_();
                return lies ? copyOf(bytesOf("{\"track\":[")) : encoded(state);
            case MessageType::performAction:
                commands.emplace_back(actionName(quorvaneAction(first).value()));
                return {};
            case MessageType::setVolume:
                commands.push_back("volume " + std::to_string(first));
                return {};
            case MessageType::lockScreenHello:
                hellos.push_back(XPCCodableHelpers::decode<LockScreenAddOnHello>(*payload).value());
                return lies ? copyOf(bytesOf("yes")) : encoded(configuration);
            default: return {};
        }
    }
    template <typename Record>
    static Bytes encoded(const Record& record) {
        return XPCCodableHelpers::encode(record).value();
    }

    MemoryPorts& ports_;
    WallClock now_;
    std::vector<Handle> served_;
};

struct FakePlatform {
    ManualClock clock;
    ManualMainThread mainThread;
    ManualSerialQueues queues;
    FakeNotices notices;
    FakeCardWindows windows;
    FakeScreens screens;
    MemoryDefaults defaults;
    MemoryDefaults sharedDefaults;
    FakeInstallation installation;
    MemoryPorts ports;
    RecordingLog log;
    Faults faults;
    bool isLocked = false;
    std::function<void()> wake;
    int activities = 0;
    std::uint64_t activityOptions = 0;
    int terminations = 0;
    ScriptedMainApp mainApp{ports, clock.wallClock()};
    LivePlatform live;

    FakePlatform() {
        screens.list = {{.frame = {0, 0, 1920, 1080}}};
        fillServices();
        fillCard();
    }
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    // Runs what the queues and the main thread hold, until both are empty.
    void settle() {
        do queues.runAll();
        while (mainThread.run() > 0);
    }
    void pass(Duration duration, Duration step = std::chrono::milliseconds{10}) {
        for (; duration > Duration{}; duration -= step) {
            clock.advance(std::min(duration, step));
            settle();
        }
    }
    int notice(const std::string& name) {
        const int heard = notices.deliver(name);
        settle();
        return heard;
    }
    void lock() {
        isLocked = true;
        notice("com.apple.screenIsLocked");
        notice("com.apple.screenLockUIIsShown");
    }
    void unlock() {
        isLocked = false;
        notice("com.apple.screenLockUIIsHidden");
        notice("com.apple.screenIsUnlocked");
    }

    std::shared_ptr<FakeStage> stage(std::size_t window = 0) const {
        const auto open = windows.open();
        if (window >= open.size()) return nullptr;
        return std::dynamic_pointer_cast<FakeStage>(open[window]->content.lock());
    }
    // Whether the card of an open window is visible once its fades have ended.
    bool isCardSeen(std::size_t window = 0) const {
        const auto shown = stage(window);
        if (shown == nullptr) return false;
        FakeWindowState& state = *windows.open()[window];
        if (const auto end = std::exchange(state.fadeCompletion, nullptr)) end();
        return !shown->isHidden && state.alpha == 1 && !state.ignoresMouseEvents;
    }
    std::optional<Rect> frame(SceneControl::ID id) const {
        const auto shown = stage();
        if (!shown || shown->scenes.empty()) return std::nullopt;
        for (const SceneControl& control : shown->scenes.back().controls)
            if (control.id == id) return control.frame;
        return std::nullopt;
    }
    // A press that reaches the first window's card, or nothing if it lets clicks through.
    void pointer(PointerEvent::Kind kind, Point location) const {
        const auto shown = stage();
        if (shown == nullptr || windows.open()[0]->ignoresMouseEvents) return;
        if (const auto handler = shown->events.pointer) handler({kind, location});
    }
    void tap(SceneControl::ID id) const {
        const auto area = frame(id);
        if (!area) return;
        pointer(PointerEvent::Kind::down, {area->midX(), area->midY()});
        pointer(PointerEvent::Kind::up, {area->midX(), area->midY()});
    }

private:
    class FaultyPort final : public RemotePort {
    public:
        FaultyPort(Faults& faults, std::unique_ptr<RemotePort> port)
            : faults_(faults), port_(std::move(port)) {}
        PortReply send(PortRequest request) override {
            if (faults_.hit()) return {.status = kPortSendTimeout - faults_.calls % 5};
            const bool isCut = faults_.hit();
            PortReply reply = port_->send(std::move(request));  // this object may be gone now
            if (isCut && reply.body) reply.body->resize(reply.body->size() / 2);
            return reply;
        }
        void cancel() override { port_->cancel(); }

    private:
        Faults& faults_;
        std::unique_ptr<RemotePort> port_;
    };

    // Makes an operation return an empty value when it is to fail.
    template <typename Value, typename... Arguments>
    void spoil(std::function<Value(Arguments...)>& operation) {
        operation = [this, whole = operation](Arguments... arguments) {
            return faults.hit() ? Value{} : whole(std::forward<Arguments>(arguments)...);
        };
    }

    void fillServices() {
        LiveServices& services = live.services;
        services.application.terminate = [this] { ++terminations; };
        services.process = {.arguments = {"add-on"},
                            .pid = 4711,
                            .systemVersion = {26, 1, 0},
                            .bundle = {},
                            .bundleProperties = {{"CFBundleShortVersionString",
                                                  PropertyValue{std::string{"1.2.3"}}}}};
        services.log = log.sink();
        services.clock = clock.clock();
        services.wallClock = clock.wallClock();
        services.mainThread = mainThread.mainThread();
        services.makeSerialQueue = queues.make();
        queues.refuses = [this] { return faults.hit(); };
        services.connectPort = [this, connect = ports.connectPort()](
                                   const std::string& name) -> std::unique_ptr<RemotePort> {
            auto port = connect(name);
            if (port == nullptr) return nullptr;
            return std::make_unique<FaultyPort>(faults, std::move(port));
        };
        spoil(services.connectPort);
        services.distributedNotices = notices.distributed();
        services.darwinNotices = notices.darwin();
        services.files.containerOfGroup = [](const std::string&) { return "/group"; };
        spoil(services.files.containerOfGroup);
        services.files.read = [this](const std::filesystem::path& path) -> Result<Bytes> {
            if (faults.hit() || path != "/group/ipc-secret")
                return std::unexpected{PlatformError{.code = 5, .description = "unreadable"}};
            return mainApp.secret;
        };
        services.openSuite = [this](const std::string&) { return sharedDefaults.table(); };
        services.installation = installation.table();
        services.makeUUID = [] { return std::string{"0F0E0D0C"}; };
        services.standardDefaults = defaults.table();
        spoil(services.standardDefaults.get);
        services.standardDefaults.synchronize = [this, synchronize =
                                                           services.standardDefaults.synchronize] {
            defaults.refuses = faults.hit();
            return synchronize();
        };
    }

    void fillCard() {
        live.lockSources = {
            .sessionDictionary =
                [this] {
                    return PropertyValue{
                        PropertyDictionary{{"CGSSessionScreenIsLocked", PropertyValue{isLocked}}}};
                },
            .observeWake =
                [this](std::function<void()> handler) {
                    wake = std::move(handler);
                    return Handle{[this] { wake = nullptr; }};
                },
            .notifyRegisterCheck = [this](const char*, int&) { return faults.hit() ? 1u : 0u; },
            .notifyGetState =
                [this](int, std::uint64_t& state) {
                    state = isLocked;
                    return faults.hit() ? 2u : 0u;
                },
            .notifyCancel = [](int) {}};
        spoil(live.lockSources.sessionDictionary);
        live.screens = screens.table();
        spoil(live.screens.list);
        live.cardWindows = windows.table();
        spoil(live.cardWindows.makeWindow);
        live.decodeImage = [](ByteView) { return std::make_shared<Image>(); };
        spoil(live.decodeImage);
        live.beginActivity = [this](std::uint64_t options, const std::string&) {
            activityOptions = options;
            ++activities;
            return Handle{[this] { --activities; }};
        };
        spoil(live.beginActivity);
        live.localized = [](const std::string& key) { return key; };
        live.isRightToLeft = [] { return false; };
    }
};

}  // namespace quorvane
