#include "Quorvane_Lock_Screen/SkyLight.hpp"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/FakeCardWindows.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

// The library's functions. Arrays are single numbers here.
std::string calls;
std::uint64_t space = 0;  // what creating one returns

template <typename... Values>
void note(const char* call, Values... values) {
    calls += call;
    ((calls += " " + std::to_string(values)), ...);
    calls += ";";
}
std::uint64_t numberIn(const void* array) { return *static_cast<const std::uint64_t*>(array); }

std::int32_t mainConnectionID() {
    note("connection");
    return 77;
}
std::uint64_t spaceCreate(std::int32_t connection, std::int32_t type, const void* options) {
    note("create", connection, type);
    EXPECT_EQ(options, nullptr);
    return space;
}
std::int32_t setLevel(std::int32_t connection, std::uint64_t which, std::int32_t level) {
    note("level", connection, which, level);
    return 1001;
}
std::int32_t showSpaces(std::int32_t connection, const void* spaces) {
    note("show", connection, numberIn(spaces));
    return 1002;
}
std::int32_t addWindows(std::int32_t connection, std::uint64_t which, const void* windows,
                        std::int32_t options) {
    note("add", connection, which, numberIn(windows), options);
    return 1003;
}

struct SkyLightTest : testing::Test {
    SkyLightTest() {
        calls.clear();
        window->number = 501;
        window->isOnScreen = true;
    }
    void put() { skyLight.put(FakeWindow{window}); }

    RecordingLog log;
    int opens = 0;
    bool hasLibrary = true;
    std::map<std::string, void*> symbols{
        {"SLSMainConnectionID", reinterpret_cast<void*>(mainConnectionID)},
        {"SLSSpaceCreate", reinterpret_cast<void*>(spaceCreate)},
        {"SLSSpaceSetAbsoluteLevel", reinterpret_cast<void*>(setLevel)},
        {"SLSShowSpaces", reinterpret_cast<void*>(showSpaces)},
        {"SLSSpaceAddWindowsAndRemoveFromSpaces", reinterpret_cast<void*>(addWindows)}};
    std::shared_ptr<FakeWindowState> window = std::make_shared<FakeWindowState>();
    SkyLight skyLight{
        {.open = [this](const char* path) -> void* {
             EXPECT_STREQ(path, "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight");
             ++opens;
             return hasLibrary ? this : nullptr;
         },
         .symbol = [this](void* library, const char* name) -> void* {
             EXPECT_EQ(library, this);
             return symbols.contains(name) ? symbols.at(name) : nullptr;
         },
         .lastError = [] { return std::optional<std::string>{"no such file"}; },
         .arrayOfNumber = [](std::uint64_t number) -> std::shared_ptr<const void> {
             return std::make_shared<const std::uint64_t>(number);
         }},
        log.sink()};
};

TEST_F(SkyLightTest, MakesOneSpaceWithTheLowHalfOfItsNumberAndPutsWindowsIntoIt) {
    space = 0xABCD'0000'0009;
    put();
    put();
    EXPECT_EQ(calls,
              "connection;create 77 1;level 77 9 400;show 77 9;add 77 9 501 7;add 77 9 501 7;");
    EXPECT_EQ(opens, 1);
    const std::string added =
        "SLSSpaceAddWindowsAndRemoveFromSpaces(space 9, [501], 7) -> 1003; visible true, occlusion "
        "2";
    EXPECT_EQ(log.take(),
              (Lines{"SkyLight symbols loaded", "SLSMainConnectionID -> 77",
                     "SLSSpaceCreate(cid, 1, NULL) -> raw 0xabcd00000009, using space 9",
                     "SLSSpaceSetAbsoluteLevel(space 9, 400) -> 1001", "SLSShowSpaces([9]) -> 1002",
                     added, added}));
}

TEST_F(SkyLightTest, TriesAnIncompleteLibraryOnce) {
    symbols.erase("SLSShowSpaces");
    put();
    put();
    EXPECT_EQ(log.take(), (Lines{"dlsym SLSShowSpaces: missing", "SkyLight symbols incomplete",
                                 "put window 501: SkyLight unavailable",
                                 "put window 501: SkyLight unavailable"}));
    EXPECT_EQ(opens, 1);
}

TEST_F(SkyLightTest, TriesAMissingLibraryOnce) {
    hasLibrary = false;
    EXPECT_FALSE(skyLight.load());
    EXPECT_FALSE(skyLight.ensureSpace());
    put();
    EXPECT_EQ(opens, 1);
    EXPECT_EQ(log.lines().front().level, LogLevel::error);
    EXPECT_EQ(log.take(), (Lines{"dlopen SkyLight failed: no such file",
                                 "put window 501: SkyLight unavailable"}));
}

TEST_F(SkyLightTest, CreatesASpaceAgainAfterSpaceZero) {
    space = 0x7'0000'0000;  // only upper bits
    EXPECT_FALSE(skyLight.ensureSpace());
    space = 5;
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_EQ(calls,
              "connection;create 77 1;level 77 0 400;show 77 0;"
              "connection;create 77 1;level 77 5 400;show 77 5;");
}

}  // namespace
}  // namespace quorvane
