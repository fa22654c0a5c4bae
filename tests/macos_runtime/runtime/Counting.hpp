// How objects are counted, for the runtime's own files.
#pragma once

#include <cstdint>

#include "tests/macos_runtime/runtime/Registry.hpp"

namespace macrt {

// In front of every counted object: objects themselves hold nothing but their class before their
// instance variables.
struct ObjectHeader {
    enum class Life : std::uint32_t { alive = 0x11FE, ending, dead = 0xDEAD };
    int count;
    std::uint32_t number;  // among those of its class in this test
    Life life;
    std::uint32_t size;  // of the object behind it
};
static_assert(sizeof(ObjectHeader) == 16);

inline ObjectHeader& headerOf(Object* object) {
    return reinterpret_cast<ObjectHeader*>(object)[-1];
}

// Classes and literals are not counted and have no header.
inline bool isCounted(const Object* object) {
    return object != nullptr && !isClassObject(object) && !object->isa->facts->isImmortal;
}

inline bool isDead(Object* object) {
    return isCounted(object) && headerOf(object).life == ObjectHeader::Life::dead;
}

// Adds the methods that code under automatic counting may not write itself.
void addCountingMethods();
void addBlockMethods();

}  // namespace macrt
