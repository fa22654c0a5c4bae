// Suppressions for the sanitizers' findings in the drawing libraries, which are not built with
// them. The sanitizers look these functions up by name.

// fontconfig keeps its font data until the process ends, when it is unreachable.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }

// Pango reads the fonts on its own thread; the sanitizer does not detect that Pango waits for that
// thread. Cairo keeps small blocks for later allocations on any thread; the sanitizer does not
// detect that it does so atomically.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\n"
           "race:libglib-2.0.so\n"
           "race:libcairo.so\n";
}
