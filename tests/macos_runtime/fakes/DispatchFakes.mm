// Queues, timers and signal sources.
#include "tests/macos_runtime/fakes/SystemFakes.hpp"

#import <dispatch/dispatch.h>

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

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
    int signal;                // 0 of a timer
    dispatch_block_t handler;  // nil once it is cancelled
    dispatch_time_t due;
    bool isActive;
}
@end
@implementation FakeSource
- (void)dealloc {
    if (!isActive) macrt::fault("a source is dropped before it was activated");
}
@end

namespace {
struct Dispatch {
    FakeQueue* main;
    FakeQueue* current;  // whose action runs
    std::vector<FakeQueue * __weak> queues;
    std::vector<FakeSource * __weak> sources;
    dispatch_time_t now = 1;
};
Dispatch dispatch;
const macrt::AtReset reset{[] { dispatch = {}; }};

FakeQueue* makeQueue(const std::string& label) {
    FakeQueue* const queue = [FakeQueue new];
    queue->label = label;
    return queue;
}
FakeQueue* fake(dispatch_queue_t queue) { return (FakeQueue*)queue; }
FakeSource* fake(dispatch_source_t source) { return (FakeSource*)source; }

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

// Those that may fire, of one signal or, with 0, the timers.
std::vector<FakeSource*> sourcesOf(int signal) {
    std::vector<FakeSource*> all;
    for (FakeSource* const& each : dispatch.sources)
        if (each != nil && each->signal == signal && each->isActive && each->handler != nil)
            all.push_back(each);
    return all;
}

void fire(FakeSource* source) {
    const dispatch_block_t handler = source->handler;
    if (handler != nil) handler();
}
}  // namespace

extern "C" {

dispatch_queue_t dispatch_get_main_queue() {
    if (dispatch.main == nil) dispatch.main = makeQueue("main");
    return dispatch.main;
}

dispatch_queue_t dispatch_get_global_queue(intptr_t identifier, uintptr_t) {
    return makeQueue("global " + std::to_string(identifier));
}

dispatch_queue_t dispatch_queue_create(const char* label, dispatch_queue_attr_t attributes) {
    macrt::note(std::string{"queue "} + label + (attributes == nil ? "" : " not serial"));
    FakeQueue* const queue = makeQueue(label);
    dispatch.queues.push_back(queue);
    return queue;
}

void dispatch_async(dispatch_queue_t queue, dispatch_block_t block) {
    fake(queue)->blocks.push_back(block);
}

void dispatch_sync(dispatch_queue_t queue, dispatch_block_t block) {
    if (dispatch.current == queue) return macrt::fault("a queue waits for itself");
    runAll(fake(queue));
    block();
}

void dispatch_queue_set_specific(dispatch_queue_t queue, const void* key, void* context,
                                 void (*)(void*)) {
    fake(queue)->specifics[key] = context;
}

void* dispatch_get_specific(const void* key) {
    return dispatch.current == nil ? nullptr : dispatch.current->specifics[key];
}

dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         uintptr_t mask, dispatch_queue_t queue) {
    FakeSource* const made = [FakeSource new];
    made->signal = static_cast<int>(handle);
    macrt::note(std::string{type} + " source " + std::to_string(handle) + " on " +
                fake(queue)->label + (mask == 0 ? "" : " flags " + std::to_string(mask)));
    dispatch.sources.push_back(made);
    return made;
}

void dispatch_source_set_timer(dispatch_source_t timer, dispatch_time_t start, uint64_t interval,
                               uint64_t leeway) {
    macrt::note("timer in " + std::to_string(start - dispatch.now) +
                (interval == DISPATCH_TIME_FOREVER ? " once" : " again") + " leeway " +
                std::to_string(leeway));
    fake(timer)->due = start;
}

void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t handler) {
    fake(source)->handler = handler;
}
void dispatch_source_cancel(dispatch_source_t source) { fake(source)->handler = nil; }
void dispatch_activate(dispatch_object_t source) {
    FakeSource* const activated = (FakeSource*)source;
    activated->isActive = true;
    if (activated->signal != 0 && macrt::answered<bool>(nil, "", "signal is pending"))
        fire(activated);
}

dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta) {
    if (when != DISPATCH_TIME_NOW) macrt::fault("only times from now on are known");
    return dispatch.now + static_cast<dispatch_time_t>(delta);
}
}

namespace macrt {

bool drainMainQueue() {
    FakeQueue* const main = fake(dispatch_get_main_queue());
    const bool hasWork = !main->blocks.empty();
    runAll(main);
    return hasWork;
}

void drainQueues() {
    const auto queues = dispatch.queues;
    for (FakeQueue* const& each : queues)
        if (each != nil) runAll(each);
}

void passTime(std::chrono::nanoseconds time) {
    const dispatch_time_t end = dispatch.now + static_cast<dispatch_time_t>(time.count());
    while (true) {
        @autoreleasepool {
            const auto timers = sourcesOf(0);
            const auto due = [](FakeSource* each) { return each->due; };
            const auto next = std::ranges::min_element(timers, {}, due);
            if (next == timers.end() || due(*next) > end) break;
            dispatch.now = std::max(dispatch.now, due(*next));
            (*next)->due = DISPATCH_TIME_FOREVER;
            fire(*next);
        }
    }
    dispatch.now = end;
}

void raiseSignal(int signal) {
    for (FakeSource* const& each : sourcesOf(signal)) fire(each);
}

std::size_t activeSources() {
    return static_cast<std::size_t>(std::ranges::count_if(dispatch.sources, [](FakeSource* each) {
        return each != nil && each->isActive && each->handler != nil;
    }));
}

}  // namespace macrt
