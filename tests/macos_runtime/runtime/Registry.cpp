#include "tests/macos_runtime/runtime/Registry.hpp"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "tests/macos_runtime/runtime/Counting.hpp"
#include "tests/macos_runtime/runtime/TestRuntime.hpp"

using namespace macrt;

extern "C" {
// The linker marks both ends of each section that the compiler fills; absent where no file has one.
#define SECTION(type, name)                      \
    [[gnu::weak]] extern type* __start_##name[]; \
    [[gnu::weak]] extern type* __stop_##name[];
SECTION(Class, objc_classlist)
SECTION(CategoryRecord, objc_catlist)
SECTION(const char, objc_selrefs)
#undef SECTION
char _objc_empty_cache[8];
// Known to the compiler by their symbols alone; filled in at the start.
Class __CFConstantStringClassReference;
Class _NSConcreteGlobalBlock;
Class _NSConcreteStackBlock;
Class _NSConcreteMallocBlock;
}

namespace macrt {
namespace {

template <typename Record>
std::span<Record*> section(Record** begin, Record** end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

struct Registry {
    std::set<std::string, std::less<>> selectors;
    std::map<std::string, Class*, std::less<>> classes;
};

// Never destroyed: objects are released while the program ends.
Registry& registry() {
    static Registry& only = *new Registry;
    return only;
}

bool lists(const ProtocolList* list, std::string_view name) {
    for (long i = 0; list != nullptr && i < list->count; ++i)
        if (list->items[i]->name == name || lists(list->items[i]->protocols, name)) return true;
    return false;
}

// What is there already stays: made fakes stand back behind those that are written by hand.
void addMembers(Class* to, RecordList* methods, RecordList* properties) {
    for (MethodRecord& method : RecordList::of<MethodRecord>(methods)) {
        method.name = selectorNamed(method.name);
        to->facts->methods.emplace(method.name, &method);
    }
    for (const PropertyRecord& property : RecordList::of<PropertyRecord>(properties)) {
        std::string_view attributes = property.attributes;
        const std::size_t custom = attributes.find(",G");
        if (custom == std::string_view::npos) {
            to->facts->getters.insert(selectorNamed(property.name));
            continue;
        }
        attributes.remove_prefix(custom + 2);
        to->facts->getters.insert(selectorNamed(attributes.substr(0, attributes.find(','))));
    }
}

void giveFacts(Class* to, const ProtocolList* protocols) {
    to->facts = new ClassFacts;
    to->facts->name = to->data->name;
    to->facts->isRecorded = lists(protocols, "Recorded");
    addMembers(to, to->data->methods, to->data->properties);
}

// A super class may have more instance variables than the header that the compiler saw: those of
// the class move up.
void moveIvars(const Class* of) {
    ClassData& data = *of->data;
    if (of->super == nullptr || of->super->data->instanceSize <= data.instanceStart) return;
    std::uint32_t alignment = 8;
    const auto ivars = RecordList::of<IvarRecord>(data.ivars);
    for (const IvarRecord& ivar : ivars) alignment = std::max(alignment, 1U << ivar.alignmentPower);
    const std::uint32_t missing = of->super->data->instanceSize - data.instanceStart;
    const std::uint32_t way = (missing + alignment - 1) / alignment * alignment;
    for (const IvarRecord& ivar : ivars)
        if (ivar.offset != nullptr) *ivar.offset += way;
    data.instanceStart += way;
    data.instanceSize += way;
}

void realise(Class* subject) {
    const bool isDone = subject == nullptr ||
                        static_cast<void*>(subject->facts) != static_cast<void*>(_objc_empty_cache);
    if (isDone) return;
    realise(subject->super);
    moveIvars(subject);
    giveFacts(subject, subject->data->protocols);
    giveFacts(subject->isa, subject->data->protocols);
    registry().classes[subject->data->name] = subject;
}

void deriveFrom(Class& subject, const char* name, std::string_view super, bool isImmortal) {
    Class* const parent = classNamed(super);
    subject = {parent->isa, parent, nullptr, nullptr, new ClassData(*parent->data)};
    subject.data->name = name;
    subject.data->methods = nullptr;
    subject.data->properties = nullptr;
    giveFacts(&subject, nullptr);
    subject.facts->isImmortal = isImmortal;
}

// Before any other constructor of the program: those already send messages.
[[gnu::constructor(101)]] void start() {
    for (const char*& name : section(__start_objc_selrefs, __stop_objc_selrefs))
        name = selectorNamed(name);
    for (Class* const each : section(__start_objc_classlist, __stop_objc_classlist)) realise(each);
    for (const CategoryRecord* const each : section(__start_objc_catlist, __stop_objc_catlist)) {
        addMembers(each->target, each->instanceMethods, each->properties);
        addMembers(each->target->isa, each->classMethods, nullptr);
    }
    addCountingMethods();
    deriveFrom(__CFConstantStringClassReference, "NSString", "NSConstantString", true);
    deriveFrom(_NSConcreteGlobalBlock, "block", "NSBlock", true);
    deriveFrom(_NSConcreteStackBlock, "block", "NSBlock", true);
    deriveFrom(_NSConcreteMallocBlock, "block", "NSBlock", false);
}

}  // namespace

Selector selectorNamed(std::string_view spelling) {
    auto& all = registry().selectors;
    const auto known = all.find(spelling);
    return (known != all.end() ? known : all.emplace(spelling).first)->c_str();
}

Class* classNamed(std::string_view name) {
    const auto found = registry().classes.find(name);
    return found == registry().classes.end() ? nullptr : found->second;
}

bool isKind(const Class* subject, const Class* wanted) {
    while (subject != nullptr && subject != wanted) subject = subject->super;
    return subject != nullptr;
}

FoundMethod findMethod(Class* from, Selector name) {
    for (Class* each = from; each != nullptr; each = each->super) {
        const auto found = each->facts->methods.find(name);
        if (found != each->facts->methods.end()) return {found->second, each};
    }
    return {};
}

void addMethod(Class* to, std::string_view name, const void* code, const char* types) {
    const Selector selector = selectorNamed(name);
    to->facts->methods[selector] = new MethodRecord{selector, types, const_cast<void*>(code)};
}

void forgetNumbers() {
    for (const auto& [name, each] : registry().classes) each->facts->made = 0;
    _NSConcreteMallocBlock.facts->made = 0;
}

}  // namespace macrt

extern "C" {

bool macrt_isKindOfClass(Object* object, Class* wanted) {
    return object != nullptr && isKind(object->isa, wanted);
}

// As far as the system's <objc/runtime.h> is needed.
Class* objc_getClass(const char* name) { return classNamed(name); }
Selector sel_registerName(const char* name) { return selectorNamed(name); }
MethodRecord* class_getInstanceMethod(Class* owner, Selector name) {
    return owner == nullptr ? nullptr : findMethod(owner, name).method;
}
MethodRecord* class_getClassMethod(Class* owner, Selector name) {
    return owner == nullptr ? nullptr : findMethod(owner->isa, name).method;
}
const char* method_getTypeEncoding(const MethodRecord* method) { return method->types; }

}  // extern "C"
