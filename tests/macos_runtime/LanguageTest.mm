// The runtime itself: what the compiler's code relies on, and that nothing wrong goes unnoticed.
#import <AppKit/AppKit.h>

#include "tests/macos_runtime/MacTest.hpp"

@protocol Strange
- (int)twice;
@end

@interface Base : NSObject {
@public
    char letter;
}
@end
@interface Derived : Base <Recorded> {
@public
    int number;
    std::string text;
}
@property(copy) NSString* title;
@property(copy) int (^block)(int);
@property(weak) id peer;
- (NSRect)moved:(NSRect)r
             by:(double)dx
             if:(BOOL)wanted
             to:(NSPoint)p
           plus:(int)a
           plus:(long)b
           plus:(float)c
           plus:(long)d;
@end
// More instance variables than those that derive from it know of.
@implementation Base {
    double hidden_[4];
}
@end
@implementation Derived {
    int own_;
}
- (instancetype)init {
    self = [super init];
    text = "built";
    own_ = 4;
    return self;
}
- (NSRect)moved:(NSRect)r
             by:(double)dx
             if:(BOOL)wanted
             to:(NSPoint)p
           plus:(int)a
           plus:(long)b
           plus:(float)c
           plus:(long)d {
    r.origin.x += dx + p.x + own_ + a + static_cast<double>(b) + c + static_cast<double>(d);
    return wanted ? r : NSRect{};
}
@end

namespace macrt {
namespace {

using LanguageTest = MacTest;

TEST_F(LanguageTest, PassesAndRecordsArgumentsOfEveryKind) {
    Derived* derived = [Derived new];
    EXPECT_EQ(derived->text, "built");
    const NSRect box = {{1, 2}, {30, 40}};
    NSRect r = [derived moved:box by:0.5 if:YES to:{100, 0} plus:1000 plus:-1 plus:0.35F plus:3];
    EXPECT_EQ(r.origin.x, 1 + 0.5 + 100 + 4 + 1000 - 1 + 0.35F + 3);
    EXPECT_EQ(r.size.height, 40);
    derived = nil;
    r = [derived moved:r by:1 if:YES to:{} plus:0 plus:0 plus:0 plus:0];
    EXPECT_EQ(r.size.width, 0);
}

TEST_F(LanguageTest, CountsReferencesAndClearsWeakOnes) {
    Derived* derived = [Derived new];
    __weak Derived* weak = derived;
    @autoreleasepool {
        Derived* other = [Derived new];
        derived.peer = other;
        derived.title = @"Grüße – ⏎";
        derived.block = ^(int i) {
          return weak ? i : -1;
        };
        EXPECT_EQ(derived.block(2), 2);
        EXPECT_EQ(livingObjects(), "2 Derived, 1 block");
    }
    EXPECT_EQ(derived.peer, nil);
    EXPECT_EQ(textOf(derived.title), "Grüße – ⏎");
    int (^block)(int) = derived.block;
    drainPool();
    @autoreleasepool {
        derived = nil;
    }
    EXPECT_EQ(weak, nil);
    EXPECT_EQ(block(1), -1);
}

TEST_F(LanguageTest, NoticesUnknownSelectorsAndTheDead) {
    const id panel = [NSPanel new];
    EXPECT_EQ([panel twice], 0);
    EXPECT_EQ(takeFaults(), Texts{"unknown selector -[NSPanel#1 twice]"});
    __unsafe_unretained NSString* gone = nil;
    void* extra = nullptr;
    @autoreleasepool {
        NSString* const text = makeString("x");
        gone = text;
        extra = (__bridge void*)text;
    }
    EXPECT_EQ([gone lengthOfBytesUsingEncoding:NSUTF8StringEncoding], 0u);
    CFRelease(extra);
    EXPECT_EQ(takeFaults(),
              (Texts{"message to a dead object: -[NSString#1 lengthOfBytesUsingEncoding:]",
                     "released once too often: NSString#1"}));
}

}  // namespace
}  // namespace macrt
