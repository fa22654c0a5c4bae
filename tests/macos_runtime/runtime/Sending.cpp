// From a saved call to the code that answers it, and the record of what was called.
#include <utility>

#include "tests/macos_runtime/runtime/Counting.hpp"
#include "tests/macos_runtime/runtime/TestRuntime.hpp"

#include <cstdio>
#include <cstdlib>

using namespace macrt;

extern "C" {
void macrt_answer_zero();
void macrt_answer_memory();
}

namespace macrt {
namespace {

enum Kind : int { kResultInMemory = 1, kToSuper = 2 };

struct Records {
    std::vector<Call> calls;
    std::function<void(const std::string&)> faultListener;
};

Records& records() {
    static Records& only = *new Records;
    return only;
}

void* zeroAnswer(int kind) {
    if ((kind & kResultInMemory) != 0) return reinterpret_cast<void*>(macrt_answer_memory);
    return reinterpret_cast<void*>(macrt_answer_zero);
}

std::string opening(Object* receiver) {
    return (isClassObject(receiver) ? "+[" : "-[") + nameOf(receiver) + " ";
}

void record(Frame& frame, int kind, Object* receiver, const char* types) {
    // To be described an argument is sent messages; those are none of the code under test.
    static bool isDescribing = false;
    if (std::exchange(isDescribing, true)) return;
    std::string text =
        opening(receiver) + describeCall(frame, (kind & kResultInMemory) != 0, types) + "]";
    isDescribing = false;
    records().calls.push_back({receiver, std::move(text)});
}

}  // namespace

std::vector<Call> takeCalls() { return std::exchange(records().calls, {}); }

std::vector<std::string> takeTexts() {
    std::vector<std::string> texts;
    for (Call& call : takeCalls()) texts.push_back(std::move(call.text));
    return texts;
}

void note(std::string text) { records().calls.push_back({nullptr, std::move(text)}); }

void setFaultListener(std::function<void(const std::string&)> listener) {
    records().faultListener = std::move(listener);
}

void fault(const std::string& what) {
    if (records().faultListener) return records().faultListener(what);
    std::fprintf(stderr, "Objective-C test runtime: %s\n", what.c_str());
    std::abort();
}

}  // namespace macrt

extern "C" void* macrt_resolve(Frame* frame, int kind) {
    std::uint64_t* const arguments = frame->integers + ((kind & kResultInMemory) != 0 ? 1 : 0);
    auto* receiver = reinterpret_cast<Object*>(arguments[0]);
    const auto name = reinterpret_cast<Selector>(arguments[1]);
    Class* from = nullptr;
    if ((kind & kToSuper) != 0) {
        const auto& call = *reinterpret_cast<SuperCall*>(receiver);
        receiver = call.receiver;
        from = call.current->super;
        arguments[0] = reinterpret_cast<std::uint64_t>(receiver);
    }
    if (receiver == nullptr) return zeroAnswer(kind);
    if (isDead(receiver)) {
        fault("message to a dead object: " + opening(receiver) + name + "]");
        return zeroAnswer(kind);
    }
    const FoundMethod found = findMethod(from != nullptr ? from : receiver->isa, name);
    if (found.method == nullptr) {
        fault("unknown selector " + opening(receiver) + name + "]");
        return zeroAnswer(kind);
    }
    const ClassFacts& facts = *found.owner->facts;
    // What the compiler makes begins with a dot.
    if (facts.isRecorded && *name != '.' && !facts.getters.contains(name))
        record(*frame, kind, receiver, found.method->types);
    return found.method->code;
}
