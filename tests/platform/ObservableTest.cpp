#include "platform/Observable.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

TEST(Observable, NotifiesLiveListenersOfRealChanges) {
    Observable<int> value{1};
    std::vector<int> heard;
    Handle listener = value.subscribe([&] { heard.push_back(value.get()); });
    for (const int next : {1, 2, 2, 3}) value.set(next);
    listener.reset();
    value.set(4);
    EXPECT_EQ(heard, (std::vector{2, 3}));
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
