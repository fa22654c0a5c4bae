// The entry for libFuzzer: one program a target, named after it.
#include <cstdint>

#include "tests/fuzz/FuzzTargets.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const quorvane::FuzzTarget* const target = [] {
        for (const auto& candidate : quorvane::fuzzTargets())
            if (candidate.name == QUORVANE_FUZZ_TARGET) return &candidate;
        std::abort();
    }();
    target->read(quorvane::ByteView{reinterpret_cast<const std::byte*>(data), size});
    return 0;
}
