#include "Quorvane_Lock_Screen/SkyLight.hpp"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/FakeCardWindows.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

std::string calls;        // the library's, each as a letter and its arguments
std::uint64_t space = 0;  // what creating one returns

std::string text(std::uint64_t number) { return " " + std::to_string(number); }
// Arrays are single numbers here.
std::string text(const void* array) {
    return array == nullptr ? " null" : text(*static_cast<const std::uint64_t*>(array));
}
template <char kName, std::int32_t kResult, typename... Arguments>
std::int32_t call(std::int32_t connection, Arguments... arguments) {
    calls += kName + text(static_cast<std::uint64_t>(connection)) + (text(arguments) + ... + ";");
    return kResult;
}
std::int32_t mainConnectionID() {
    calls += "m;";
    return 77;
}
std::uint64_t spaceCreate(std::int32_t connection, std::int32_t type, const void* options) {
    call<'c', 0>(connection, type, options);
    return space;
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
        {"SLSSpaceSetAbsoluteLevel",
         reinterpret_cast<void*>(call<'l', 1001, std::uint64_t, std::int32_t>)},
        {"SLSShowSpaces", reinterpret_cast<void*>(call<'s', 1002, const void*>)},
        {"SLSSpaceAddWindowsAndRemoveFromSpaces",
         reinterpret_cast<void*>(call<'a', 1003, std::uint64_t, const void*, std::int32_t>)}};
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
    EXPECT_EQ(calls, "m;c 77 1 null;l 77 9 400;s 77 9;a 77 9 501 7;a 77 9 501 7;");
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
    put();
    put();
    EXPECT_EQ(opens, 1);
    EXPECT_EQ(log.take(),
              (Lines{"dlopen SkyLight failed: no such file", "put window 501: SkyLight unavailable",
                     "put window 501: SkyLight unavailable"}));
}

TEST_F(SkyLightTest, CreatesASpaceAgainAfterSpaceZero) {
    space = 0x7'0000'0000;  // only upper bits
    EXPECT_FALSE(skyLight.ensureSpace());
    space = 5;
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_EQ(calls, "m;c 77 1 null;l 77 0 400;s 77 0;m;c 77 1 null;l 77 5 400;s 77 5;");
}

}  // namespace
}  // namespace quorvane
