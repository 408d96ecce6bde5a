// What the leak sanitizer takes for lost: fontconfig keeps its patterns behind offsets instead of pointers. Sanitized builds only.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() { return "leak:libfontconfig\n"; }
