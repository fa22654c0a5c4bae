#include "shared/DetachedLaunch.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

TEST(DetachedLaunch, TellsItsFailuresApart) {
    Result<OpenCommandEnd> answer = OpenCommandEnd{3, ""};
    const DetachedLaunch open{.open = [&](const auto&, const auto&) { return answer; }};
    auto failed = open.launch("/X.app", {});
    ASSERT_FALSE(failed);
    EXPECT_EQ(std::get<DetachedLaunch::Failure>(failed.error()).description(),
              "open exited with status 3");
    answer = OpenCommandEnd{1, "no such application"};
    failed = open.launch("/X.app", {});
    EXPECT_EQ(std::get<DetachedLaunch::Failure>(failed.error()).description(),
              "no such application");
    answer = std::unexpected{PlatformError{.code = 2, .description = "not found"}};
    failed = open.launch("/X.app", {});
    EXPECT_EQ(std::get<PlatformError>(failed.error()).code, 2);
}

}  // namespace
}  // namespace quorvane
