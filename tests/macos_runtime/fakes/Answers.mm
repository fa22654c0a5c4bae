#include "tests/macos_runtime/fakes/Answers.hpp"

#include <map>

// What only has to be told apart.
@interface CFObject : NSObject
@end
@implementation CFObject
@end

namespace macrt {

struct Object;
std::string nameOf(Object* object);

namespace {
struct Tables {
    std::map<std::string, std::any> answers;
    std::map<std::string, id> shared;
};
Tables& tables() {
    static auto& only = *new Tables;
    static const AtReset reset{[] { only = {}; }};
    return only;
}
}  // namespace

void putAnswer(std::string to, std::any answer) {
    tables().answers[std::move(to)] = std::move(answer);
}

std::string keyOf(id object, const std::string& name) {
    return nameOf((__bridge Object*)object) + "." + name;
}

const std::any* findAnswer(id object, const std::string& owner, const std::string& name) {
    const auto& all = tables().answers;
    auto found = all.find(keyOf(object, name));
    if (found == all.end()) found = all.find(owner.empty() ? name : owner + "." + name);
    return found == all.end() ? nullptr : &found->second;
}

BOOL succeeds(const char* owner, const char* name, NSError** error) {
    const std::any* failure = findAnswer(nil, owner, name);
    if (failure == nullptr) failure = findAnswer(nil, owner, "error");
    if (failure != nullptr && error != nullptr) *error = fromAnswer<NSError*>(*failure);
    return failure == nullptr;
}

id sharedObject(Class of, const char* name) {
    __strong id& object = tables().shared[keyOf(of, name)];
    if (object == nil) {
        object = [of new];
        setAnswer(object, "description", makeString(keyOf(of, name)));
    }
    return object;
}

void* makeObject(const std::string& description) {
    CFObject* const object = [CFObject new];
    setAnswer(object, "description", makeString(description));
    return (__bridge_retained void*)object;
}

}  // namespace macrt
