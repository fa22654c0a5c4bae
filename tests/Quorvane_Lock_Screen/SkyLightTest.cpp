// What the window server's functions receive is in the transcripts of tests/macos_program/.
#include "Quorvane_Lock_Screen/SkyLight.hpp"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/FakeCardWindows.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

std::uint64_t space = 0;  // what creating one returns
int creations = 0;

std::uint64_t spaceCreate(std::int32_t, std::int32_t, const void*) {
    ++creations;
    return space;
}
template <typename... Arguments>
std::int32_t succeed(Arguments...) {
    return 0;
}

struct SkyLightTest : testing::Test {
    RecordingLog log;
    int opens = 0;
    bool hasLibrary = true;
    std::map<std::string, void*> symbols{
        {"SLSMainConnectionID", reinterpret_cast<void*>(succeed<>)},
        {"SLSSpaceCreate", reinterpret_cast<void*>(spaceCreate)},
        {"SLSSpaceSetAbsoluteLevel",
         reinterpret_cast<void*>(succeed<std::int32_t, std::uint64_t, std::int32_t>)},
        {"SLSShowSpaces", reinterpret_cast<void*>(succeed<std::int32_t, const void*>)},
        {"SLSSpaceAddWindowsAndRemoveFromSpaces",
         reinterpret_cast<void*>(succeed<std::int32_t, std::uint64_t, const void*, std::int32_t>)}};
    const DynamicLoader loader{
        .open = [this](const char*) -> void* {
            ++opens;
            return hasLibrary ? this : nullptr;
        },
        .symbol = [this](void*, const char* name) { return symbols[name]; },
        .lastError = [] { return std::optional<std::string>{"no such file"}; },
        .arrayOfNumber = [](std::uint64_t) { return std::shared_ptr<const void>{}; }};
};

TEST_F(SkyLightTest, TriesAnUnusableLibraryOnce) {
    symbols.erase("SLSShowSpaces");
    const Lines incomplete{"dlsym SLSShowSpaces: missing", "SkyLight symbols incomplete"};
    for (const auto& [isThere, reason] :
         {std::pair{true, incomplete}, {false, {"dlopen SkyLight failed: no such file"}}}) {
        hasLibrary = isThere;
        SkyLight skyLight{loader, log.sink()};
        skyLight.put(FakeWindow{std::make_shared<FakeWindowState>()});
        skyLight.put(FakeWindow{std::make_shared<FakeWindowState>()});
        Lines lines = reason;
        lines.insert(lines.end(), 2, "put window 0: SkyLight unavailable");
        EXPECT_EQ(log.take(), lines);
    }
    EXPECT_EQ(opens, 2);
}

TEST_F(SkyLightTest, CreatesASpaceAgainAfterSpaceZero) {
    SkyLight skyLight{loader, log.sink()};
    space = 0x7'0000'0000;  // only upper bits
    EXPECT_FALSE(skyLight.ensureSpace());
    space = 5;
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_TRUE(skyLight.ensureSpace());
    EXPECT_EQ(creations, 2);
}

}  // namespace
}  // namespace quorvane
