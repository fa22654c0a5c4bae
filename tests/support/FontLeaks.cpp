// fontconfig keeps what it has read of the fonts until the process ends, unreachable by then. The
// leak checker is told so by this function, which it looks up by name.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }
