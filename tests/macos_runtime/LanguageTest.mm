// The runtime itself: what the compiler's code relies on, and that nothing wrong goes unnoticed.
#import <AppKit/AppKit.h>

#include <cstdarg>
#include <stdexcept>
#include <thread>

#include "tests/macos_runtime/MacTest.hpp"

@protocol Strange
- (int)twice;
@end

@interface Base : NSObject {
@public
    char letter;
}
@end
@interface Derived : Base {
@public
    int number;
    std::string text;
}
@property(copy) NSString* title;
@property(nonatomic, copy) int (^block)(int);
@property(weak) id peer;
@property NSRect box;
- (NSRect)moved:(NSRect)r
             by:(double)dx
             if:(BOOL)wanted
             to:(NSPoint)p
           plus:(int)a
           plus:(long)b
           plus:(float)c
           plus:(long)d;
- (NSPoint)middle;
- (long double)precise;
- (double)sum:(int)count, ...;
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
- (NSPoint)middle {
    return {_box.size.width / 2, _box.size.height / 2};
}
- (long double)precise {
    return 1.25L;
}
- (double)sum:(int)count, ... {
    va_list list;
    va_start(list, count);
    double total = 0;
    while (count-- > 0) total += va_arg(list, double);
    va_end(list);
    return total;
}
@end
@interface Derived (Extra)
+ (NSString*)kind;
- (int)own;
@end
@implementation Derived (Extra)
+ (NSString*)kind {
    return @"extra";
}
- (int)own {
    return own_;
}
@end

namespace macrt {
namespace {

using LanguageTest = MacTest;

TEST_F(LanguageTest, PassesArgumentsAndResultsOfEveryKind) {
    Derived* derived = [Derived new];
    EXPECT_EQ(derived->text, "built");
    derived.box = {{1, 2}, {30, 40}};
    NSRect r = [derived moved:derived.box
                           by:0.5
                           if:YES
                           to:{100, 0}
                         plus:1000
                         plus:1
                         plus:2.5F
                         plus:3];
    EXPECT_EQ(r.origin.x, 1 + 0.5 + 100 + 4 + 1000 + 1 + 2.5 + 3);
    EXPECT_EQ(r.size.height, 40);
    EXPECT_EQ([derived middle].y, 20);
    EXPECT_EQ([derived precise], 1.25L);
    EXPECT_EQ(([derived sum:3, 1.0, 2.5, 3.0]), 6.5);
    EXPECT_EQ([derived own], 4);
    EXPECT_EQ(textOf([Derived kind]), "extra");
    derived = nil;
    EXPECT_EQ([derived moved:r by:1 if:YES to:{} plus:0 plus:0 plus:0 plus:0].size.width, 0);
    EXPECT_EQ(([derived middle].x + [derived sum:1, 5.0] + [derived own]), 0);
    EXPECT_EQ([derived precise], 0);
}

TEST_F(LanguageTest, CountsReferencesAndClearsWeakOnes) {
    Derived* derived = [Derived new];
    __weak Derived* weak = derived;
    @autoreleasepool {
        Derived* other = [Derived new];
        derived.peer = other;
        derived.title = @"Grüße – ⏎";
        __block int calls = 0;
        derived.block = ^(int i) {
          calls += i;
          return weak ? calls : -1;
        };
        EXPECT_EQ(derived.block(2) + derived.block(3), 7);
        EXPECT_EQ(calls, 5);
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

TEST_F(LanguageTest, CountsFromManyThreads) {
    Derived* const shared = [Derived new];
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([shared] {
            __weak Derived* weak = shared;
            for (int round = 0; round < 2000; ++round) @autoreleasepool {
                    Derived* const strong = weak;
                    (void)@[ strong, @(round) ];
                }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(livingObjects(), "1 Derived");
}

TEST_F(LanguageTest, ThrowsCatchesAndUnwinds) {
    int ends = 0;
    const auto attempt = [&](void (^body)(void)) -> std::string {
        @try {
            @synchronized(@"lock") {
                body();
            }
        } @catch (NSString* thrown) {
            return textOf(thrown);
        } @catch (id) {
            return "another";
        } @finally {
            ++ends;
        }
        return "none";
    };
    EXPECT_EQ(attempt(^{
                @throw @"text";
              }),
              "text");
    EXPECT_EQ(attempt(^{
                @throw [Derived new];
              }),
              "another");
    EXPECT_EQ(attempt(^{
              }),
              "none");
    EXPECT_THROW(attempt(^{
                   throw std::runtime_error("of C++");
                 }),
                 std::runtime_error);
    EXPECT_EQ(ends, 4);
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

TEST_F(LanguageTest, RecordsWhatIsCalledWithItsArguments) {
    NSPanel* const panel = [[NSPanel alloc] initWithContentRect:{
        {1, 2}, { 3, 4.5 }
    }
                                                      styleMask:128
                                                        backing:NSBackingStoreBuffered
                                                          defer:NO];
    panel.alphaValue = 0.35;
    EXPECT_EQ(panel.alphaValue, 0.35);
    [panel setFrame:{
        {-1, 0}, { 2, 2 }
    }
            display:YES];
    EXPECT_EQ(takeTexts(),
              (Texts{"-[NSPanel#1 initWithContentRect:{{1, 2}, {3, 4.5}} styleMask:128 backing:2 "
                     "defer:NO]",
                     "-[NSPanel#1 setAlphaValue:0.35]",
                     "-[NSPanel#1 setFrame:{{-1, 0}, {2, 2}} display:YES]"}));
}

}  // namespace
}  // namespace macrt
