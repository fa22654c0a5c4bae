// What every test over the fakes does: a pool around it, no fault in it, nothing alive after it,
// and all calls that it did not take itself as in its transcript. For Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include "tests/macos_runtime/Transcript.hpp"
#include "tests/macos_runtime/fakes/Answers.hpp"

extern "C" {
void* objc_autoreleasePoolPush(void);
void objc_autoreleasePoolPop(void* mark);
}

namespace macrt {

using Texts = std::vector<std::string>;

class MacTest : public testing::Test {
protected:
    void SetUp() override {
        beginAnew();
        resetFakes();
        setFaultListener([this](const std::string& what) { faults_.push_back(what); });
        pool_ = objc_autoreleasePoolPush();
    }
    void TearDown() override {
        drainPool();
        objc_autoreleasePoolPop(pool_);
        @autoreleasepool {
            resetFakes();
        }
        EXPECT_EQ(livingObjects(), "");
        EXPECT_EQ(faults_, Texts{});
        expectTranscript(takeTexts());
        setFaultListener(nullptr);
    }

    // A line between the calls of the transcript.
    static void step(const std::string& what) { note("-- " + what); }
    // Lets go of what is only waiting for the pool's end.
    void drainPool() {
        objc_autoreleasePoolPop(pool_);
        pool_ = objc_autoreleasePoolPush();
    }
    Texts takeFaults() { return std::exchange(faults_, {}); }

private:
    void* pool_ = nullptr;
    Texts faults_;
};

}  // namespace macrt
