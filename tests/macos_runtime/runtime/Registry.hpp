// Classes, selectors and methods, for the runtime's own files.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "tests/macos_runtime/runtime/Abi.hpp"

namespace macrt {

// One of every class and one of every metaclass.
struct ClassFacts {
    std::string name;
    std::unordered_map<Selector, MethodRecord*> methods;  // without those of super classes
    std::unordered_set<Selector> getters;                 // of declared properties
    bool isRecorded = false;
    bool isImmortal = false;  // its instances are not counted: literals
    std::uint32_t made = 0;   // instances since the test began
};

Selector selectorNamed(std::string_view spelling);
Class* classNamed(std::string_view name);  // null when there is none
bool isKind(const Class* subject, const Class* wanted);

struct FoundMethod {
    MethodRecord* method = nullptr;
    Class* owner = nullptr;  // the class that implements it
};
FoundMethod findMethod(Class* from, Selector name);
void addMethod(Class* to, std::string_view name, const void* code, const char* types);
void forgetNumbers();

inline bool isClassObject(const Object* object) { return object->isa->isMetaclass(); }

// "NSPanel#3", "NSColor" for the class, "nil".
std::string nameOf(Object* object);
// As an argument is shown: @"text", 5, <NSPanel#1>, nil.
std::string describe(Object* object);
// The selector with the arguments of a saved call between its parts.
std::string describeCall(Frame& frame, bool isResultInMemory, const char* types);

template <typename Result, typename... Arguments>
Result callCode(const void* code, Object* receiver, Selector name, Arguments... arguments) {
    using Code = Result (*)(Object*, Selector, Arguments...);
    return reinterpret_cast<Code>(const_cast<void*>(code))(receiver, name, arguments...);
}

}  // namespace macrt

extern "C" {
void objc_msgSend();
macrt::Object* objc_retain(macrt::Object* object);
macrt::Object* objc_autorelease(macrt::Object* object);
void objc_release(macrt::Object* object);
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* mark);
macrt::Object* class_createInstance(macrt::Class* of, std::size_t extraBytes);
extern macrt::Class __CFConstantStringClassReference;
extern macrt::Class _NSConcreteGlobalBlock;
extern macrt::Class _NSConcreteStackBlock;
extern macrt::Class _NSConcreteMallocBlock;
}

namespace macrt {

template <typename Result, typename... Arguments>
Result send(Object* receiver, std::string_view name, Arguments... arguments) {
    return callCode<Result>(reinterpret_cast<const void*>(objc_msgSend), receiver,
                            selectorNamed(name), arguments...);
}

}  // namespace macrt
