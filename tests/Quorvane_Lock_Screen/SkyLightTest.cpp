#include "Quorvane_Lock_Screen/SkyLight.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "tests/support/FakeCardWindows.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

// Loads the library double in place of the system's, and counts the attempts.
class SkyLightTest : public testing::Test {
protected:
    SkyLight make(const char* library) {
        DynamicLoader loader{
            .open =
                [this, library](const char* path) {
                    ++opens_;
                    asked_ = path;
                    library_ = dlopen(library, RTLD_NOW | RTLD_LOCAL);
                    return library_;
                },
            .symbol = [](void* from, const char* name) { return dlsym(from, name); },
            .lastError = []() -> std::optional<std::string> {
                const char* text = dlerror();
                return text == nullptr ? std::nullopt : std::optional<std::string>{text};
            },
            .arrayOfNumber = [](std::uint64_t number) -> std::shared_ptr<const void> {
                return std::make_shared<const std::uint64_t>(number);
            }};
        return SkyLight{loader, log_.sink()};
    }
    std::string& calls() { return *static_cast<std::string*>(dlsym(library_, "skyLightCalls")); }
    void setSpace(std::uint64_t space) {
        *static_cast<std::uint64_t*>(dlsym(library_, "skyLightSpace")) = space;
    }
    FakeWindow window() {
        auto state = std::make_shared<FakeWindowState>();
        state->number = 501;
        state->isOnScreen = true;
        return FakeWindow{state};
    }
    void SetUp() override {
        // The library stays loaded from test to test: its text starts empty.
        library_ = dlopen(SKYLIGHT_WHOLE, RTLD_NOW | RTLD_LOCAL);
        calls().clear();
    }

    RecordingLog log_;
    void* library_ = nullptr;
    int opens_ = 0;
    std::string asked_;
};

TEST_F(SkyLightTest, MakesOneSpaceWithTheLowHalfOfItsNumberAndPutsWindowsIntoIt) {
    SkyLight skyLight = make(SKYLIGHT_WHOLE);
    setSpace(0xABCD'0000'0009);
    skyLight.put(window());
    skyLight.put(window());
    EXPECT_EQ(
        calls(),
        "connection;create 77 1 null;level 77 9 400;show 77 9;add 77 9 501 7;add 77 9 501 7;");
    EXPECT_EQ(asked_, "/System/Library/PrivateFrameworks/SkyLight.framework/SkyLight");
    EXPECT_EQ(opens_, 1);
    const std::string added =
        "SLSSpaceAddWindowsAndRemoveFromSpaces(space 9, [501], 7) -> 1003; visible true, occlusion "
        "2";
    EXPECT_EQ(log_.take(),
              (Lines{"SkyLight symbols loaded", "SLSMainConnectionID -> 77",
                     "SLSSpaceCreate(cid, 1, NULL) -> raw 0xabcd00000009, using space 9",
                     "SLSSpaceSetAbsoluteLevel(space 9, 400) -> 1001", "SLSShowSpaces([9]) -> 1002",
                     added, added}));
}

TEST_F(SkyLightTest, AMissingSymbolMakesEveryPutUnavailable) {
    SkyLight skyLight = make(SKYLIGHT_WITHOUT_SHOW);
    skyLight.put(window());
    skyLight.put(window());
    EXPECT_EQ(log_.take(), (Lines{"dlsym SLSShowSpaces: missing", "SkyLight symbols incomplete",
                                  "put window 501: SkyLight unavailable",
                                  "put window 501: SkyLight unavailable"}));
    EXPECT_EQ(opens_, 1);
}

TEST_F(SkyLightTest, AMissingLibraryIsTriedOnce) {
    SkyLight skyLight = make("/nonexistent/SkyLight");
    EXPECT_FALSE(skyLight.load());
    EXPECT_FALSE(skyLight.ensureSpace());
    skyLight.put(window());
    EXPECT_EQ(opens_, 1);
    const auto lines = log_.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(lines[0].text.starts_with("dlopen SkyLight failed: /nonexistent/SkyLight"));
    EXPECT_EQ(lines[0].level, LogLevel::error);
    EXPECT_EQ(lines[1].text, "put window 501: SkyLight unavailable");
}

TEST_F(SkyLightTest, SpaceZeroIsNoSpaceAndIsMadeAgainNextTime) {
    SkyLight skyLight = make(SKYLIGHT_WHOLE);
    setSpace(0x7'0000'0000);  // only upper bits
    EXPECT_FALSE(skyLight.ensureSpace());
    EXPECT_EQ(calls(), "connection;create 77 1 null;level 77 0 400;show 77 0;");
    setSpace(5);
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_EQ(calls(),
              "connection;create 77 1 null;level 77 0 400;show 77 0;"
              "connection;create 77 1 null;level 77 5 400;show 77 5;");
}

}  // namespace
}  // namespace quorvane
