#include "shared/DetachedLaunch.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

TEST(DetachedLaunch, FailsWithTheLaunchersWords) {
    Result<OpenCommandEnd> answer = OpenCommandEnd{3, ""};
    const DetachedLaunch open{.open = [&](const auto&, const auto&) { return answer; }};
    EXPECT_EQ(open.launch("/X.app", {}).error().description, "open exited with status 3");
    answer = OpenCommandEnd{1, "no such application"};
    EXPECT_EQ(open.launch("/X.app", {}).error().description, "no such application");
    answer = std::unexpected{PlatformError{.code = 2, .description = "not found"}};
    EXPECT_EQ(open.launch("/X.app", {}).error(), answer.error());
}

}  // namespace
}  // namespace quorvane
