// What the system answers, written down by a test, and the calls of what make-fakes makes. For
// Objective-C++ only.
#pragma once

#include <any>
#include <type_traits>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

template <typename T>
concept ObjectType = std::is_convertible_v<T, id>;
template <typename T>
concept NumberType = std::is_arithmetic_v<T> || std::is_enum_v<T>;

// The answer to "NSTask.launchAndReturnError:" or "CGImageGetWidth", of every such object; of
// "NSTask.error" to all methods of the class that may fail. Nil is an answer as well.
void putAnswer(std::string to, std::any answer);
// Of one object only: its property or method by its own name.
std::string keyOf(id object, const std::string& name);

template <typename T>
void setAnswer(std::string to, T answer) {
    if constexpr (ObjectType<T>)
        putAnswer(std::move(to), std::any{id{answer}});
    else if constexpr (NumberType<T>)
        putAnswer(std::move(to), std::any{static_cast<double>(answer)});
    else
        putAnswer(std::move(to), std::any{answer});
}
template <typename T>
void setAnswer(id object, const std::string& name, T answer) {
    setAnswer(keyOf(object, name), answer);
}

// The object's own answer before that of its class; null when there is none.
const std::any* findAnswer(id object, const std::string& owner, const std::string& name);

template <typename T>
T fromAnswer(const std::any& answer) {
    if constexpr (ObjectType<T>)
        return (T)std::any_cast<id>(answer);
    else if constexpr (NumberType<T>)
        return static_cast<T>(std::any_cast<double>(answer));
    else
        return std::any_cast<T>(answer);
}

template <typename T>
T answered(id object, const char* owner, const char* name, std::type_identity_t<T> otherwise = {}) {
    const std::any* const answer = findAnswer(object, owner, name);
    return answer ? fromAnswer<T>(*answer) : otherwise;
}

// Whether a method that may fail does not.
BOOL succeeds(const char* owner, const char* name, NSError** error);

// The one object of its class.
id sharedObject(Class of, const char* name);
template <typename T>
T* shared(const char* name) {
    return (T*)sharedObject([T class], name);
}

// "CGContextSetAlpha(<context>, 0.5)".
template <typename... Arguments>
std::string callText(const char* name, const Arguments&... arguments) {
    std::string text;
    ((text += (text.empty() ? "" : ", ") + valueText(@encode(Arguments), &arguments)), ...);
    return std::string{name} + "(" + text + ")";
}

template <typename T, typename... Arguments>
T called(const char* name, const Arguments&... arguments) {
    note(callText(name, arguments...));
    if constexpr (!std::is_void_v<T>) return answered<T>(nil, "", name);
}

// An object of Core Foundation, which is described by the call that made it; with one reference.
void* makeObject(const std::string& description);
// The test's own result, or such an object. Only the first is noted: the other tells of it itself.
template <typename T, typename... Arguments>
T made(const char* name, const Arguments&... arguments) {
    const std::string text = callText(name, arguments...);
    const std::any* const answer = findAnswer(nil, "", name);
    if (answer == nullptr) return static_cast<T>(makeObject(text));
    note(text);
    return (__bridge_retained T)std::any_cast<id>(*answer);
}

// A constant is its name.
template <typename T>
T named(NSString* name) {
    if constexpr (ObjectType<T>)
        return name;
    else
        return (__bridge T)name;
}

}  // namespace macrt
