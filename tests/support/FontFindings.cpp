// What the sanitizers find in the font libraries, which are not built with them. They look these
// functions up by name.

// fontconfig keeps what it has read of the fonts until the process ends, unreachable by then.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

// Pango reads the fonts on a thread of its own; that it waits for that thread is not seen.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\n"
           "race:libglib-2.0.so\n";
}
