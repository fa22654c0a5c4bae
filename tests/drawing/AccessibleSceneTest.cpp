#include "drawing/AccessibleScene.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

using ID = SceneControl::ID;
using Role = SceneControl::Role;
using Kind = AccessibilityChange::Kind;

TEST(AccessibleScene, TellsWhatAPersonWouldNotice) {
    const SceneControl title{.id = ID::title, .role = Role::text, .label = "Tideline"};
    const SceneControl heart{.id = ID::love, .role = Role::button, .label = "Love"};
    const SceneControl volume{.id = ID::volume, .role = Role::slider, .number = 50};
    const SceneControl progress{.id = ID::progress, .role = Role::progress, .number = 1};
    SceneControl other = title;
    other.label = "Clouds";
    SceneControl louder = volume;
    louder.number = 55;
    SceneControl later = progress;
    later.number = 2;
    later.value = "0:02";
    EXPECT_EQ(
        accessibilityChanges({title, heart, volume, progress}, {other, louder, later}),
        (std::vector<AccessibilityChange>{
            {Kind::disappeared, ID::love}, {Kind::label, ID::title}, {Kind::number, ID::volume}}));
    EXPECT_EQ(accessibilityChanges({title}, {heart, title}),
              (std::vector<AccessibilityChange>{{Kind::appeared, ID::love}}));
    EXPECT_TRUE(accessibilityChanges({title, later}, {title, progress}).empty());
}

TEST(AccessibleScene, OffersActionsOnlyWhereSomethingHappens) {
    EXPECT_EQ(accessibilityActions(Role::button).size(), 1u);
    EXPECT_EQ(accessibilityActions(Role::slider)[0], AccessibilityAction::increment);
    EXPECT_EQ(accessibilityActions(Role::slider)[1], AccessibilityAction::decrement);
    for (const Role role : {Role::text, Role::image, Role::progress})
        EXPECT_TRUE(accessibilityActions(role).empty());
}

}  // namespace
}  // namespace quorvane
