// A client of the link with everything around it under the test's control.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/ManualSerialQueues.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {

inline constexpr char kMainPort[] = "group.example.quillon.Quorvane.messageport";
inline constexpr char kStateChanged[] = "example.quillon.Quorvane.playerStateChanged";

class LinkFixture : public testing::Test {
protected:
    std::unique_ptr<MessagePortClient> makeClient(
        std::optional<MessagePortLocalResponder> responder = std::nullopt) {
        return std::make_unique<MessagePortClient>(
            kMainPort, [this] { return secret; },
            MessagePortClient::Services{.log = log.sink(),
                                        .connectPort = ports.connectPort(),
                                        .makeSerialQueue = queues.make(),
                                        .mainThread = mainThread.mainThread(),
                                        .clock = clock.clock(),
                                        .darwinNotices = notices.darwin()},
            std::move(responder));
    }
    // The main application's main port; its reply to every request is `state`.
    void serveMain() {
        mainPort = ports.serve(kMainPort, [this](std::int32_t, ByteView) { return state; });
    }
    void connect() {
        serveMain();
        client->start();
        log.take();
        ports.sent.clear();
    }

    std::optional<Bytes> secret = Bytes(32, std::byte{9});
    Bytes state = copyOf(bytesOf(kSampleText));
    MemoryPorts ports;
    ManualSerialQueues queues;
    ManualMainThread mainThread;
    ManualClock clock;
    FakeNotices notices;
    RecordingLog log;
    Handle mainPort;
    std::unique_ptr<MessagePortClient> client = makeClient();
};

}  // namespace quorvane
