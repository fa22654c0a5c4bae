// Blocks: copies on the heap are counted objects like any other, so that one that is kept for ever
// shows among the living.
#include "tests/macos_runtime/runtime/Counting.hpp"
#include "tests/macos_runtime/runtime/TestRuntime.hpp"

using namespace macrt;

namespace {

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

void _Block_object_assign(void* to, void* from, int what) {
    constexpr int kIsObject = 3;
    constexpr int kIsBlock = 7;
    if (what != kIsObject && what != kIsBlock) fault("a block shares a variable: not written here");
    auto* const object = static_cast<Object*>(from);
    *static_cast<Object**>(to) = what == kIsBlock ? _Block_copy(object) : objc_retain(object);
}

void _Block_object_dispose(void* from, int) { objc_release(static_cast<Object*>(from)); }

}  // extern "C"

void macrt::addBlockMethods() {
    Class* const block = classNamed("NSBlock");
    addMethod(block, "copy", reinterpret_cast<const void*>(_Block_copy), "@16@0:8");
    addMethod(block, "dealloc", reinterpret_cast<const void*>(endBlock), "v16@0:8");
}
