// What the sanitizers find in the libraries that draw, which are not built with them. They look
// these functions up by name.

// fontconfig keeps what it has read of the fonts until the process ends, unreachable by then.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

// Pango reads the fonts on a thread of its own; that it waits for that thread is not seen. Cairo
// keeps small blocks for the next who asks, on whatever thread; that it does so atomically is not
// seen either.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\n"
           "race:libglib-2.0.so\n"
           "race:libcairo.so\n";
}
