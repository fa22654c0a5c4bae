// The framing of requests, and the secret's making and reading.
#include "QuorvaneKit/link/MessagePortWire.hpp"

#include <gtest/gtest.h>

#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "tests/support/MemoryFileStore.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

TEST(MessagePortWire, UnwrapsOnlyTheExactSecret) {
    const Bytes secret(32, std::byte{9});
    const Bytes body = framed(bytesOf("abc"), secret);
    EXPECT_EQ(textOf(MessagePortWire::unwrap(body, secret).value()), "abc");
    EXPECT_TRUE(MessagePortWire::unwrap(secret, secret).value().empty());
    EXPECT_FALSE(MessagePortWire::unwrap(ByteView{secret}.first(31), secret));
    for (std::size_t bit = 0; bit < 32 * 8; ++bit) {
        Bytes changed = body;
        changed[bit / 8] ^= std::byte{1} << (bit % 8);
        EXPECT_FALSE(MessagePortWire::unwrap(changed, secret)) << "bit " << bit;
    }
    for (const std::size_t length : {0, 31, 33})
        EXPECT_FALSE(MessagePortWire::unwrap(body, Bytes(length, std::byte{9})));
}

TEST(MessagePortSecret, TheFirstWriterWinsAndEveryFailureIsLogged) {
    constexpr char kFile[] = "/container/ipc-secret";
    const Bytes own(32, std::byte{5});
    const Bytes other(32, std::byte{7});
    int randomStatus = 0;
    MemoryFileStore store;
    RecordingLog log;
    const auto make = [&] {
        const FillRandom fillRandom = [&](std::span<std::byte> place) -> std::expected<void, int> {
            if (randomStatus != 0) return std::unexpected{randomStatus};
            std::ranges::copy(own, place.begin());
            return {};
        };
        return MessagePortSecret::make(fillRandom, store.table(), log.sink());
    };
    EXPECT_FALSE(MessagePortSecret::read(store.table()));
    EXPECT_EQ(make(), own);
    EXPECT_EQ(MessagePortSecret::read(store.table()), own);
    store.files[kFile] = Bytes(33);  // judged where it is used
    EXPECT_EQ(MessagePortSecret::read(store.table()), Bytes(33));
    EXPECT_EQ(make(), own) << "a secret that no client can use is replaced";
    store.files.clear();
    store.beforeWrite = [&] { store.files[kFile] = other; };
    EXPECT_EQ(make(), other);
    EXPECT_EQ(store.files.at(kFile), other);
    EXPECT_TRUE(log.lines().empty());

    store.writeFailure = "disk full";
    EXPECT_FALSE(make());
    store.container.reset();
    EXPECT_FALSE(make());
    EXPECT_FALSE(MessagePortSecret::read(store.table()));
    randomStatus = -50;
    EXPECT_FALSE(make());
    EXPECT_EQ(log.take(), (Lines{"Failed to write IPC secret: disk full",
                                 "App Group container unavailable; cannot persist IPC secret",
                                 "Failed to generate IPC secret (SecRandomCopyBytes status -50)"}));
}

}  // namespace
}  // namespace quorvane
