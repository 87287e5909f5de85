/// The encoder that makes the HEIC files to test with never frees some of its tables.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libx265";
}
