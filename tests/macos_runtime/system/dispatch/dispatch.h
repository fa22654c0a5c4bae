// What the compiler for macOS brings along as <dispatch/dispatch.h>, for running on Linux: as far
// as the adapters use it. Its objects are Objective-C objects, as they are in Objective-C++.
#pragma once

#include <objc/NSObject.h>

@protocol OS_dispatch_object <NSObject>
@end
@protocol OS_dispatch_queue <OS_dispatch_object>
@end
@protocol OS_dispatch_source <OS_dispatch_object>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject<OS_dispatch_source>* dispatch_source_t;
typedef NSObject<OS_dispatch_object>* dispatch_object_t;
typedef NSObject<OS_dispatch_object>* dispatch_queue_attr_t;
typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
typedef const char* dispatch_source_type_t;

#define NSEC_PER_SEC 1000000000ull
#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)
#define DISPATCH_QUEUE_SERIAL nullptr
#define DISPATCH_TIMER_STRICT 0x1
#define DISPATCH_SOURCE_TYPE_TIMER "timer"
#define DISPATCH_SOURCE_TYPE_SIGNAL "signal"
enum : unsigned int { QOS_CLASS_USER_INITIATED = 0x19 };

extern "C" {
dispatch_queue_t dispatch_get_main_queue(void);
dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t flags);
dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes)
    __attribute__((ns_returns_retained));
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block);
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         uintptr_t mask, dispatch_queue_t queue)
    __attribute__((ns_returns_retained));
void dispatch_source_set_timer(dispatch_source_t source, dispatch_time_t start, uint64_t interval,
                               uint64_t leeway);
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_activate(dispatch_object_t object);
void dispatch_queue_set_specific(dispatch_queue_t queue, const void* key, void* context,
                                 void (*destructor)(void*));
void* dispatch_get_specific(const void* key);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
}
