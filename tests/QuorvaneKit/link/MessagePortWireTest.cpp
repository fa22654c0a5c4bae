// Message numbers, the framing of requests, and the secret's making and reading.
#include "QuorvaneKit/link/MessagePortWire.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "tests/support/MemoryFileStore.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

Bytes numbered(std::size_t length) {
    Bytes bytes(length);
    std::uint8_t next = 1;
    for (std::byte& byte : bytes) byte = std::byte{next++};
    return bytes;
}

TEST(MessageType, NumbersAndPorts) {
    const std::set<std::int32_t> toMain{1, 2, 3, 4, 5};
    const std::set<std::int32_t> queries{10, 11, 12, 13, 14};
    for (std::int32_t identifier = -2; identifier < 300; ++identifier) {
        const auto type = messageType(identifier);
        EXPECT_EQ(type.has_value(), toMain.contains(identifier) || queries.contains(identifier));
        if (!type) continue;
        EXPECT_EQ(isQuery(*type), queries.contains(identifier)) << identifier;
        EXPECT_EQ(std::to_underlying(*type), identifier);
    }
    EXPECT_FALSE(messageType(256 + 1));
    EXPECT_EQ(queryPortName(kMessagePortBaseName, 3),
              "group.example.quillon.Quorvane.messageport.query.3");
    EXPECT_EQ(queryPortThreadName(0), "example.quillon.Quorvane.messageport.query.0");
    EXPECT_EQ(queryClientQueueLabel(2), "example.quillon.Quorvane.messageport.query-client.2");
}

TEST(MessagePortWire, UnwrapsOnlyTheExactSecret) {
    const Bytes secret = numbered(32);
    const Bytes payload = numbered(3);
    const Bytes body = framed(payload, secret);
    for (std::size_t length = 0; length <= body.size(); ++length) {
        const auto unwrapped = MessagePortWire::unwrap(ByteView{body}.first(length), secret);
        ASSERT_EQ(unwrapped.has_value(), length >= 32) << length;
        if (!unwrapped) continue;
        EXPECT_TRUE(std::ranges::equal(*unwrapped, ByteView{payload}.first(length - 32)));
    }
    for (std::size_t bit = 0; bit < 32 * 8; ++bit) {
        Bytes changed = body;
        changed[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(MessagePortWire::unwrap(changed, secret)) << "bit " << bit;
    }
    for (std::size_t length = 0; length < 70; ++length)
        EXPECT_EQ(MessagePortWire::unwrap(numbered(length), numbered(length)).has_value(),
                  length == 32);
}

// What the secret's maker touches; each part can fail.
struct SecretWorld {
    std::optional<int> randomStatus;
    MemoryFileStore store;
    RecordingLog log;

    FillRandom fillRandom() {
        return [this](std::span<std::byte> place) -> std::expected<void, int> {
            if (randomStatus) return std::unexpected{*randomStatus};
            std::ranges::copy(numbered(place.size()), place.begin());
            return {};
        };
    }
    std::optional<Bytes> make() {
        return MessagePortSecret::make(fillRandom(), store.table(), log.sink());
    }
};

TEST(MessagePortSecret, IsMadeKeptAndRead) {
    SecretWorld world;
    EXPECT_FALSE(MessagePortSecret::read(world.store.table()));
    EXPECT_EQ(world.make(), numbered(32));
    EXPECT_EQ(world.store.files.at("/container/ipc-secret"), numbered(32));
    EXPECT_EQ(MessagePortSecret::read(world.store.table()), numbered(32));
    world.store.files["/container/ipc-secret"] = numbered(33);  // judged where it is used
    EXPECT_EQ(MessagePortSecret::read(world.store.table())->size(), 33U);
    EXPECT_EQ(world.make(), numbered(32)) << "one that no client can use is replaced";
    const Bytes other(32, std::byte{7});
    world.store.files.clear();
    world.store.beforeWrite = [&] { world.store.files["/container/ipc-secret"] = other; };
    EXPECT_EQ(world.make(), other) << "the first writer wins";
    EXPECT_EQ(world.store.files.at("/container/ipc-secret"), other);
    world.store.container.reset();
    EXPECT_FALSE(MessagePortSecret::read(world.store.table()));
    EXPECT_TRUE(world.log.lines().empty());
}

TEST(MessagePortSecret, EveryFailureIsLoggedAndLeavesNone) {
    SecretWorld world;
    world.randomStatus = -50;
    EXPECT_FALSE(world.make());
    world.randomStatus.reset();
    world.store.container.reset();
    EXPECT_FALSE(world.make());
    world.store.container = "/container";
    world.store.writeFailure = "disk full";
    EXPECT_FALSE(world.make());
    EXPECT_TRUE(world.store.files.empty());
    for (const auto& line : world.log.lines()) EXPECT_EQ(line.level, LogLevel::error);
    EXPECT_EQ(world.log.take(),
              (Lines{"Failed to generate IPC secret (SecRandomCopyBytes status -50)",
                     "App Group container unavailable; cannot persist IPC secret",
                     "Failed to write IPC secret: disk full"}));
}

}  // namespace
}  // namespace quorvane
