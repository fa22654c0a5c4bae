// Objects, their counts and pools, weak references and properties: what code under automatic
// counting calls.
#include "tests/macos_runtime/runtime/Counting.hpp"

#include <cstdlib>
#include <map>
#include <new>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "tests/macos_runtime/runtime/TestRuntime.hpp"

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#define POISON(place, size) ASAN_POISON_MEMORY_REGION(place, size)
#define UNPOISON(place, size) ASAN_UNPOISON_MEMORY_REGION(place, size)
#else
#define POISON(place, size) ((void)(place), (void)(size))
#define UNPOISON(place, size) ((void)(place), (void)(size))
#endif

using namespace macrt;

namespace macrt {
namespace {

using Life = ObjectHeader::Life;

struct Tables {
    std::unordered_set<Object*> living;
    std::vector<Object*> dead;  // kept until the test ends, so that messages to them are noticed
    std::unordered_map<Object*, std::unordered_set<Object**>> weakPlaces;
};

Tables& tables() {
    static Tables& only = *new Tables;
    return only;
}

// The objects, null where a pool begins.
std::vector<Object*> pool;

void callOwn(const Class* of, Object* object, const char* name) {
    const auto found = of->facts->methods.find(selectorNamed(name));
    if (found != of->facts->methods.end())
        callCode<void>(found->second->code, object, found->first);
}

// Members of C++ type: those of the super class first.
void construct(const Class* of, Object* object) {
    if (of == nullptr) return;
    construct(of->super, object);
    callOwn(of, object, ".cxx_construct");
}

// -[NSObject dealloc]
void endLife(Object* object, Selector) {
    for (const Class* each = object->isa; each != nullptr; each = each->super)
        callOwn(each, object, ".cxx_destruct");
    const auto places = tables().weakPlaces.find(object);
    if (places != tables().weakPlaces.end()) {
        for (Object** const place : places->second) *place = nullptr;
        tables().weakPlaces.erase(places);
    }
    tables().living.erase(object);
    headerOf(object).life = Life::dead;
    // The class stays readable: it is looked at before every message.
    POISON(object + 1, headerOf(object).size - sizeof(Object));
    tables().dead.push_back(object);
}

bool isEnding(Object* object) { return isCounted(object) && headerOf(object).life != Life::alive; }

Object** placeIn(Object* object, std::ptrdiff_t offset) {
    return reinterpret_cast<Object**>(reinterpret_cast<char*>(object) + offset);
}

void setMember(Object* object, std::ptrdiff_t offset, Object* value, bool isCopied) {
    Object* const kept = isCopied ? send<Object*>(value, "copy") : objc_retain(value);
    objc_release(std::exchange(*placeIn(object, offset), kept));
}

void freeDead() {
    for (Object* const object : std::exchange(tables().dead, {})) {
        UNPOISON(object + 1, headerOf(object).size - sizeof(Object));
        std::free(&headerOf(object));
    }
}

}  // namespace

std::string livingObjects() {
    std::map<std::string, int> counts;
    for (const Object* const each : tables().living) ++counts[each->isa->facts->name];
    std::string report;
    for (const auto& [name, count] : counts)
        report += (report.empty() ? "" : ", ") + std::to_string(count) + " " + name;
    return report;
}

void beginAnew() {
    freeDead();
    tables().living.clear();
    forgetNumbers();
    takeCalls();
}

void addCountingMethods() {
    Class* const root = classNamed("NSObject");
    addMethod(root, "retain", reinterpret_cast<const void*>(objc_retain), "@16@0:8");
    addMethod(root, "release", reinterpret_cast<const void*>(objc_release), "v16@0:8");
    addMethod(root, "autorelease", reinterpret_cast<const void*>(objc_autorelease), "@16@0:8");
    addMethod(root, "dealloc", reinterpret_cast<const void*>(endLife), "v16@0:8");
    addBlockMethods();
}

}  // namespace macrt

extern "C" {

Object* class_createInstance(Class* of, std::size_t extraBytes) {
    const std::size_t size = of->data->instanceSize + extraBytes;
    auto* const header = static_cast<ObjectHeader*>(std::calloc(1, sizeof(ObjectHeader) + size));
    header->count = 1;
    header->life = Life::alive;
    header->size = static_cast<std::uint32_t>(size);
    auto* const object = reinterpret_cast<Object*>(header + 1);
    object->isa = of;
    header->number = ++of->facts->made;
    tables().living.insert(object);
    construct(of, object);
    return object;
}

Object* objc_alloc(Class* of) { return send<Object*>(reinterpret_cast<Object*>(of), "alloc"); }
Object* objc_alloc_init(Class* of) { return send<Object*>(objc_alloc(of), "init"); }

Object* objc_retain(Object* object) {
    if (isDead(object))
        fault("a dead object is retained: " + nameOf(object));
    else if (isCounted(object))
        ++headerOf(object).count;
    return object;
}

void objc_release(Object* object) {
    if (!isCounted(object)) return;
    if (isDead(object)) return fault("released once too often: " + nameOf(object));
    if (--headerOf(object).count > 0 || headerOf(object).life != Life::alive) return;
    headerOf(object).life = Life::ending;
    send<void>(object, "dealloc");
}

Object* objc_autorelease(Object* object) {
    if (!isCounted(object)) return object;
    if (pool.empty()) fault("autoreleased without a pool: " + nameOf(object));
    pool.push_back(object);
    return object;
}

void* objc_autoreleasePoolPush() {
    pool.push_back(nullptr);
    return reinterpret_cast<void*>(pool.size());
}

void objc_autoreleasePoolPop(void* mark) {
    const auto size = reinterpret_cast<std::size_t>(mark);
    while (pool.size() >= size) {
        Object* const last = pool.back();
        pool.pop_back();
        objc_release(last);
    }
}

Object* objc_retainAutorelease(Object* object) { return objc_autorelease(objc_retain(object)); }
Object* objc_autoreleaseReturnValue(Object* object) { return objc_autorelease(object); }
Object* objc_retainAutoreleaseReturnValue(Object* object) { return objc_retainAutorelease(object); }
// Results are not handed over as the system does it: the pool lets go of them later.
Object* objc_retainAutoreleasedReturnValue(Object* object) { return objc_retain(object); }
Object* objc_unsafeClaimAutoreleasedReturnValue(Object* object) { return object; }

void objc_storeStrong(Object** place, Object* value) {
    objc_retain(value);
    objc_release(std::exchange(*place, value));
}

// Every place that holds a weak reference is listed under its object.
Object* objc_storeWeak(Object** place, Object* object) {
    if (isCounted(*place)) tables().weakPlaces[*place].erase(place);
    if (isEnding(object)) object = nullptr;
    if (isCounted(object)) tables().weakPlaces[object].insert(place);
    return *place = object;
}

Object* objc_initWeak(Object** place, Object* object) {
    *place = nullptr;
    return objc_storeWeak(place, object);
}

void objc_destroyWeak(Object** place) { objc_storeWeak(place, nullptr); }

Object* objc_loadWeakRetained(Object** place) {
    return isEnding(*place) ? nullptr : objc_retain(*place);
}

void objc_copyWeak(Object** to, Object** from) {
    Object* const object = objc_loadWeakRetained(from);
    objc_initWeak(to, object);
    objc_release(object);
}

void objc_moveWeak(Object** to, Object** from) {
    objc_copyWeak(to, from);
    objc_destroyWeak(from);
}

// Accessors that the compiler does not write out.
Object* objc_getProperty(Object* object, Selector, std::ptrdiff_t offset, bool) {
    return objc_retainAutorelease(*placeIn(object, offset));
}
void objc_setProperty_atomic(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
    setMember(object, offset, value, false);
}
void objc_setProperty_atomic_copy(Object* object, Selector, Object* value, std::ptrdiff_t offset) {
    setMember(object, offset, value, true);
}
void objc_copyStruct(void* to, const void* from, std::ptrdiff_t size, bool, bool) {
    std::memcpy(to, from, static_cast<std::size_t>(size));
}
void objc_enumerationMutation(Object* object) {
    fault("changed while it is walked: " + describe(object));
}

}  // extern "C"
