#include "platform/linux/sound/PulseLibrary.hpp"

#include <dlfcn.h>

#include <optional>

namespace quorvane {
namespace {

std::optional<PulseLibrary> load() {
    void* const handle = dlopen("libpulse.so.0", RTLD_NOW | RTLD_LOCAL);
    if (!handle) return std::nullopt;
    PulseLibrary library;
#define QUORVANE_PULSE_LOAD(name)                                                  \
    library.name = reinterpret_cast<decltype(library.name)>(dlsym(handle, #name)); \
    if (!library.name) return std::nullopt;
    QUORVANE_PULSE_FUNCTIONS(QUORVANE_PULSE_LOAD)
#undef QUORVANE_PULSE_LOAD
    return library;
}

}  // namespace

const PulseLibrary* PulseLibrary::get() {
    static const std::optional<PulseLibrary> library = load();
    return library ? &*library : nullptr;
}

}  // namespace quorvane
