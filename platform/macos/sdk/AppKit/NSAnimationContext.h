#pragma once

#include <Foundation/Foundation.h>

@interface NSAnimationContext : NSObject
+ (void)runAnimationGroup:(void (^)(NSAnimationContext* context))changes
        completionHandler:(void (^)(void))completionHandler;
@property NSTimeInterval duration;
@end
