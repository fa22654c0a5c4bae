// The records that the compiler emits for Apple's Objective-C ABI on a 64-bit target, as far as the
// test runtime reads them. The layout is the system's, the names are ours.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace macrt {

// One address per spelling once the runtime has started.
using Selector = const char*;

// Heads every array of records.
struct RecordList {
    std::uint32_t entrySize;
    std::uint32_t count;

    template <typename Record>
    static std::span<Record> of(RecordList* list) {
        if (list == nullptr) return {};
        return {reinterpret_cast<Record*>(list + 1), list->count};
    }
};

struct MethodRecord {
    Selector name;
    const char* types;
    void* code;
};

struct IvarRecord {
    long* offset;
    const char* name;
    const char* type;
    std::uint32_t alignmentPower;
    std::uint32_t size;
};

struct PropertyRecord {
    const char* name;
    const char* attributes;
};

struct ProtocolRecord;
struct ProtocolList {
    long count;
    ProtocolRecord* items[1];  // as many as `count` says
};

struct ProtocolRecord {
    void* isa;
    const char* name;
    ProtocolList* protocols;
};

struct ClassData {
    static constexpr std::uint32_t kIsMetaclass = 1;
    std::uint32_t flags;
    std::uint32_t instanceStart;
    std::uint32_t instanceSize;
    std::uint32_t reserved;
    const std::uint8_t* strongLayout;
    const char* name;
    RecordList* methods;
    ProtocolList* protocols;
    RecordList* ivars;
    const std::uint8_t* weakLayout;
    RecordList* properties;
};

struct ClassFacts;  // what the runtime knows of a class; stands where the system keeps a cache

struct Class {
    Class* isa;
    Class* super;
    ClassFacts* facts;
    void* unused;
    ClassData* data;

    bool isMetaclass() const { return (data->flags & ClassData::kIsMetaclass) != 0; }
};

struct CategoryRecord {
    const char* name;
    Class* target;
    RecordList* instanceMethods;
    RecordList* classMethods;
    ProtocolList* protocols;
    RecordList* properties;
};

struct Object {
    Class* isa;
};

struct SuperCall {
    Object* receiver;
    Class* current;  // the search begins at its super class
};

struct BlockDescriptor {
    unsigned long reserved;
    unsigned long size;
    // Only where the block has its own copying.
    void (*copy)(void* to, const void* from);
    void (*dispose)(const void* block);
};

struct Block {
    static constexpr int kHasOwnCopying = 1 << 25;
    static constexpr int kOnHeap = 1 << 24;
    static constexpr int kIsGlobal = 1 << 28;
    Class* isa;
    int flags;
    int reserved;
    void* code;
    BlockDescriptor* descriptor;
};

// What Send.S saves of a call before it asks for the method.
struct Frame {
    double vectors[8][2];
    std::uint64_t integers[6];
    std::uint64_t vectorCount;
    std::uint64_t chain;
    std::uint64_t basePointer;
    std::uint64_t returnAddress;
    unsigned char stack[1];  // the arguments that had no register
};

}  // namespace macrt
