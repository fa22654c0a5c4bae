// The entry for libFuzzer, for the target that FUZZ_TARGET names in the environment.
#include <cstdint>
#include <cstdlib>

#include "tests/fuzz/FuzzTargets.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const quorvane::FuzzTarget* const target = [] {
        const char* const name = std::getenv("FUZZ_TARGET");
        for (const auto& candidate : quorvane::fuzzTargets())
            if (name && candidate.name == name) return &candidate;
        std::abort();
    }();
    target->read(quorvane::ByteView{reinterpret_cast<const std::byte*>(data), size});
    return 0;
}
