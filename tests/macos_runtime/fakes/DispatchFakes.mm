// Queues, timers and signal sources.
#include "tests/macos_runtime/fakes/DispatchFakes.hpp"

#import <dispatch/dispatch.h>

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

struct dispatch_source_type_s {
    int unused;
};
const dispatch_source_type_s _dispatch_source_type_timer{};
const dispatch_source_type_s _dispatch_source_type_signal{};

@interface FakeQueue : NSObject <OS_dispatch_queue> {
@public
    std::string label;
    std::deque<dispatch_block_t> blocks;
    std::map<const void*, void*> specifics;
}
@end
@implementation FakeQueue
@end

@interface FakeSource : NSObject <OS_dispatch_source> {
@public
    dispatch_source_type_t type;
    uintptr_t handle;
    dispatch_block_t handler;
    dispatch_time_t due;
    bool isActive;
    bool isCancelled;
}
@end

namespace {
struct Dispatch {
    FakeQueue* main;
    FakeQueue* global;
    FakeQueue* current;  // whose action runs
    std::vector<FakeQueue * __weak> queues;
    std::vector<FakeSource * __weak> sources;
    dispatch_time_t now = 1;
};
Dispatch dispatch;
const macrt::AtReset reset{[] { dispatch = {}; }};

FakeQueue* makeQueue(const char* label) {
    FakeQueue* const queue = [FakeQueue new];
    queue->label = label;
    return queue;
}

void runAll(FakeQueue* queue) {
    while (!queue->blocks.empty()) {
        const dispatch_block_t block = queue->blocks.front();
        queue->blocks.pop_front();
        FakeQueue* const before = std::exchange(dispatch.current, queue);
        @autoreleasepool {
            block();
        }
        dispatch.current = before;
    }
}

template <typename Reference>
FakeSource* source(Reference reference) {
    return (FakeSource*)reference;
}
}  // namespace

@implementation FakeSource
- (void)dealloc {
    if (!isActive) macrt::fault("a source is dropped before it was activated");
}
@end

extern "C" {

dispatch_queue_t dispatch_get_main_queue() {
    if (dispatch.main == nil) dispatch.main = makeQueue("main");
    return dispatch.main;
}

dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t) {
    if (dispatch.global == nil)
        dispatch.global = makeQueue(("global " + std::to_string(identifier)).c_str());
    return dispatch.global;
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
    macrt::note(std::string{"queue "} + label + (attributes == nil ? "" : " not serial"));
    FakeQueue* const queue = makeQueue(label);
    dispatch.queues.push_back(queue);
    return queue;
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    ((FakeQueue*)queue)->blocks.push_back(block);
}

void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block) {
    if (dispatch.current == queue) return macrt::fault("a queue waits for itself");
    runAll((FakeQueue*)queue);
    block();
}

void dispatch_queue_set_specific(dispatch_queue_t queue, const void* key, void* context,
                                 void (*)(void*)) {
    ((FakeQueue*)queue)->specifics[key] = context;
}

void* dispatch_get_specific(const void* key) {
    return dispatch.current == nil ? nullptr : dispatch.current->specifics[key];
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         uintptr_t mask, dispatch_queue_t queue) {
    FakeSource* const made = [FakeSource new];
    made->type = type;
    made->handle = handle;
    const bool isTimer = type == &_dispatch_source_type_timer;
    macrt::note((isTimer ? "timer source" : "signal source " + std::to_string(handle)) + " on " +
                ((FakeQueue*)queue)->label + (mask == 0 ? "" : " masked"));
    dispatch.sources.push_back(made);
    return made;
}

void dispatch_source_set_timer(dispatch_source_t timer, dispatch_time_t start, uint64_t interval,
                               uint64_t leeway) {
    macrt::note("timer in " + std::to_string(start - dispatch.now) +
                (interval == DISPATCH_TIME_FOREVER ? " once" : " again") + " leeway " +
                std::to_string(leeway));
    source(timer)->due = start;
}

void dispatch_source_set_event_handler(dispatch_source_t of, dispatch_block_t handler) {
    source(of)->handler = handler;
}

void dispatch_source_cancel(dispatch_source_t of) {
    source(of)->isCancelled = true;
    source(of)->handler = nil;
}

void dispatch_activate(dispatch_object_t object) { source(object)->isActive = true; }
void dispatch_resume(dispatch_object_t object) { source(object)->isActive = true; }

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
    if (when != DISPATCH_TIME_NOW) macrt::fault("only times from now on are known");
    return dispatch.now + static_cast<dispatch_time_t>(delta);
}
}

namespace macrt {
namespace {

FakeSource* nextTimer(dispatch_time_t end) {
    FakeSource* next = nil;
    for (FakeSource* const& each : dispatch.sources) {
        const bool isDue = each != nil && each->type == &_dispatch_source_type_timer &&
                           each->isActive && each->handler != nil && each->due <= end;
        if (isDue && (next == nil || each->due < next->due)) next = each;
    }
    return next;
}

}  // namespace

void drainMainQueue() { runAll((FakeQueue*)dispatch_get_main_queue()); }

void drainQueues() {
    const auto queues = dispatch.queues;
    for (FakeQueue* const& each : queues)
        if (each != nil) runAll(each);
}

void passTime(std::chrono::nanoseconds time) {
    const dispatch_time_t end = dispatch.now + static_cast<dispatch_time_t>(time.count());
    while (true) {
        @autoreleasepool {
            FakeSource* const timer = nextTimer(end);
            if (timer == nil) break;
            dispatch.now = std::max(dispatch.now, timer->due);
            timer->due = DISPATCH_TIME_FOREVER;
            const dispatch_block_t handler = timer->handler;
            handler();
        }
    }
    dispatch.now = end;
}

void raiseSignal(int signal) {
    const auto sources = dispatch.sources;
    for (FakeSource* const& each : sources) {
        if (each == nil || each->type != &_dispatch_source_type_signal) continue;
        const dispatch_block_t handler = each->handler;
        if (each->handle == static_cast<uintptr_t>(signal) && each->isActive && handler != nil)
            handler();
    }
}

std::size_t activeSources() {
    return static_cast<std::size_t>(std::ranges::count_if(dispatch.sources, [](FakeSource* each) {
        return each != nil && each->isActive && !each->isCancelled;
    }));
}

}  // namespace macrt
