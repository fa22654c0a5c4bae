#include "shared/AddOnSignals.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

using Status = AddOnSignals::Status;

TEST(AddOnSignals, AStatusIsReadBackAsItWasWrittenAndNotGuessed) {
    const Status status{.isConnected = true, .version = "1.2.0"};
    EXPECT_EQ(Status::fromUserInfo(status.userInfo()), status);
    for (const char* key : {"connected", "version"}) {
        PropertyDictionary missing = status.userInfo();
        ASSERT_EQ(missing.erase(key), 1u);
        EXPECT_EQ(Status::fromUserInfo(missing), std::nullopt);
        PropertyDictionary otherType = status.userInfo();
        otherType[key] = {std::int64_t{1}};
        EXPECT_EQ(Status::fromUserInfo(otherType), std::nullopt);
    }
}

}  // namespace
}  // namespace quorvane
