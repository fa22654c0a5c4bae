#include "platform/Observable.hpp"

#include <gtest/gtest.h>

#include <optional>

namespace quorvane {
namespace {

TEST(Observable, TellsOnlyRealChangesAndOnlyLiveListeners) {
    Observable<int> value{1};
    std::vector<int> first;
    std::vector<int> second;
    Handle firstHandle = value.subscribe([&] { first.push_back(value.get()); });
    Handle secondHandle = value.subscribe([&] { second.push_back(value.get()); });
    value.set(1);
    value.set(2);
    secondHandle.reset();
    value.set(3);
    EXPECT_EQ(first, (std::vector{2, 3}));
    EXPECT_EQ(second, (std::vector{2}));
}

TEST(Observable, AListenerMayDropOthersItselfAndTheObservable) {
    auto value = std::make_unique<Observable<int>>(0);
    int calls = 0;
    Handle dropped;
    Handle dropping = value->subscribe([&] {
        ++calls;
        dropped.reset();
        dropping.reset();
    });
    dropped = value->subscribe([&] { ADD_FAILURE() << "was dropped before its turn"; });
    value->set(1);
    value->set(2);
    EXPECT_EQ(calls, 1);
    Handle outliving = value->subscribe([] {});
    value.reset();
}

}  // namespace
}  // namespace quorvane
