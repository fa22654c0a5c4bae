// @throw, @catch and @synchronized. Objective-C exceptions are C++ exceptions whose type record
// asks the class of the thrown object.
#include <map>
#include <mutex>
#include <typeinfo>

#include "tests/macos_runtime/runtime/Counting.hpp"
#include "tests/macos_runtime/runtime/TestRuntime.hpp"

using namespace macrt;

namespace {

struct TypeRecord {
    const void* const* table;
    const char* name;
    Class* wanted;
};

bool no() { return false; }

bool doesCatch(const TypeRecord* wanted, const TypeRecord* thrown, void** object, unsigned) {
    if (thrown->table != wanted->table) return false;  // thrown by C++
    auto* const value = *static_cast<Object**>(*object);
    if (wanted->wanted != nullptr && !isKind(value->isa, wanted->wanted)) return false;
    *object = value;
    return true;
}

std::recursive_mutex& monitorOf(Object* object) {
    static auto& monitors = *new std::map<Object*, std::recursive_mutex>;
    const auto held = locked();
    return monitors[object];
}

}  // namespace

extern "C" {

void* __cxa_allocate_exception(std::size_t) noexcept;
void* __cxa_begin_catch(void*) noexcept;
void __cxa_end_catch();
[[noreturn]] void __cxa_throw(void*, std::type_info*, void (*)(void*));
[[noreturn]] void __cxa_rethrow();

// Laid out as the virtual table of std::type_info: two destructors, two questions about kinds, the
// question of a catch clause, the way to a base class.
const void* objc_ehtype_vtable[] = {
    nullptr,
    nullptr,
    reinterpret_cast<const void*>(no),
    reinterpret_cast<const void*>(no),
    reinterpret_cast<const void*>(no),
    reinterpret_cast<const void*>(no),
    reinterpret_cast<const void*>(doesCatch),
    reinterpret_cast<const void*>(no),
};
TypeRecord OBJC_EHTYPE_id = {objc_ehtype_vtable + 2, "id", nullptr};

[[noreturn]] void objc_exception_throw(Object* object) {
    auto* const slot = static_cast<Object**>(__cxa_allocate_exception(sizeof object));
    *slot = objc_retain(object);
    __cxa_throw(slot, reinterpret_cast<std::type_info*>(&OBJC_EHTYPE_id),
                [](void* thrown) { objc_release(*static_cast<Object**>(thrown)); });
}
[[noreturn]] void objc_exception_rethrow() { __cxa_rethrow(); }
void* objc_begin_catch(void* exception) { return __cxa_begin_catch(exception); }
void objc_end_catch() { __cxa_end_catch(); }

void objc_enumerationMutation(Object* object) {
    fault("changed while it is walked: " + describe(object));
}

int objc_sync_enter(Object* object) {
    if (object != nullptr) monitorOf(object).lock();
    return 0;
}
int objc_sync_exit(Object* object) {
    if (object != nullptr) monitorOf(object).unlock();
    return 0;
}

}  // extern "C"
