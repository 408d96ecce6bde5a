// The archive form: what is accepted and stored again comes back to the last byte.
#include "fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CPropertyDB database;
    if (fuzz::Load(database, {reinterpret_cast<const char*>(data), size}, false)) {
        std::string first, second;
        FUZZ_REQUIRE(fuzz::Store(database, false, first));
        CPropertyDB again;
        FUZZ_REQUIRE(fuzz::Load(again, first, false));
        FUZZ_REQUIRE(fuzz::Store(again, false, second));
        FUZZ_REQUIRE(first == second);
    }
    fuzz::Use(database);
    return 0;
}
