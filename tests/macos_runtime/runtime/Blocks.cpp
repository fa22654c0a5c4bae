// Blocks: copies on the heap are counted objects like any other, so that one that is kept for ever
// shows among the living.
#include <cstdlib>

#include "tests/macos_runtime/runtime/Counting.hpp"

using namespace macrt;

namespace {

// What the compiler says is captured.
enum Capture : int { kIsBlock = 7, kIsSharedVariable = 8, kFromSharedVariable = 128 };

// The function that declares the variable holds it as well, and lets go at the end of its scope:
// the first copy begins with two holders.
SharedVariable* onHeap(SharedVariable* variable) {
    variable = variable->forwarding;
    if ((variable->flags & SharedVariable::kOnHeap) == 0) {
        const auto size = static_cast<std::size_t>(variable->size);
        auto* const copy =
            static_cast<SharedVariable*>(std::memcpy(std::malloc(size), variable, size));
        copy->flags = (copy->flags & ~SharedVariable::kHolders) | SharedVariable::kOnHeap | 1;
        copy->forwarding = variable->forwarding = copy;
        if ((variable->flags & SharedVariable::kHasOwnCopying) != 0) copy->keep(copy, variable);
        variable = copy;
    }
    ++variable->flags;
    return variable;
}

void letGo(SharedVariable* variable) {
    variable = variable->forwarding;
    if ((variable->flags & SharedVariable::kOnHeap) == 0) return;
    if ((--variable->flags & SharedVariable::kHolders) != 0) return;
    if ((variable->flags & SharedVariable::kHasOwnCopying) != 0) variable->dispose(variable);
    std::free(variable);
}

void endBlock(Object* object, Selector name) {
    const auto* const block = reinterpret_cast<Block*>(object);
    if ((block->flags & Block::kHasOwnCopying) != 0) block->descriptor->dispose(block);
    SuperCall toRoot{object, classNamed("NSBlock")};
    callCode<void>(findMethod(toRoot.current->super, name).method->code, object, name);
}

}  // namespace

extern "C" {

Object* _Block_copy(Object* object) {
    if (object == nullptr) return nullptr;
    auto* const block = reinterpret_cast<Block*>(object);
    if ((block->flags & Block::kIsGlobal) != 0) return object;
    if ((block->flags & Block::kOnHeap) != 0) return objc_retain(object);
    const std::size_t size = block->descriptor->size;
    const std::size_t extra = size - _NSConcreteMallocBlock.data->instanceSize;
    Object* const copied = class_createInstance(&_NSConcreteMallocBlock, extra);
    auto* const copy = reinterpret_cast<Block*>(copied);
    std::memcpy(static_cast<void*>(copy), block, size);
    copy->isa = &_NSConcreteMallocBlock;
    copy->flags |= Block::kOnHeap;
    if ((copy->flags & Block::kHasOwnCopying) != 0) copy->descriptor->copy(copy, block);
    return copied;
}

Object* objc_retainBlock(Object* block) { return _Block_copy(block); }
void _Block_release(Object* block) { objc_release(block); }

void _Block_object_assign(void* to, void* from, int what) {
    if ((what & kFromSharedVariable) != 0)
        *static_cast<void**>(to) = from;
    else if ((what & kIsSharedVariable) != 0)
        *static_cast<SharedVariable**>(to) = onHeap(static_cast<SharedVariable*>(from));
    else if ((what & kIsBlock) == kIsBlock)
        *static_cast<Object**>(to) = _Block_copy(static_cast<Object*>(from));
    else
        *static_cast<Object**>(to) = objc_retain(static_cast<Object*>(from));
}

void _Block_object_dispose(void* from, int what) {
    if ((what & kFromSharedVariable) != 0) return;
    if ((what & kIsSharedVariable) != 0)
        letGo(static_cast<SharedVariable*>(from));
    else
        objc_release(static_cast<Object*>(from));
}

}  // extern "C"

void macrt::addBlockMethods() {
    Class* const block = classNamed("NSBlock");
    addMethod(block, "copy", reinterpret_cast<const void*>(_Block_copy), "@16@0:8");
    addMethod(block, "dealloc", reinterpret_cast<const void*>(endBlock), "v16@0:8");
}
