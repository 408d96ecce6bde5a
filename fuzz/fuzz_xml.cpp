// The XML form. Not every accepted document comes back as it was: names can hold dots and quotes, texts can hold ";" or stand in
// white space. After one store and load it has settled: storing that again gives the same bytes.
#include "fuzz/fuzz_support.h"
#include "xml/xml_reader.h"

namespace {
// The reader with strings must see what the reader without them sees: the same end.
class Silent : public CXMLReader {};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string input(reinterpret_cast<const char*>(data), size);
    CPropertyDB database;
    const bool loaded = fuzz::Load(database, input, true);
    CMemFile file(reinterpret_cast<BYTE*>(input.data()), static_cast<UINT>(input.size()));
    Silent reader;
    const bool read = reader.Read(0, &file) != 0;
    FUZZ_REQUIRE(read || !loaded);

    std::string first, second, third;
    if (loaded && fuzz::Store(database, true, first)) {
        CPropertyDB again;
        FUZZ_REQUIRE(fuzz::Load(again, first, true));
        FUZZ_REQUIRE(fuzz::Store(again, true, second));
        CPropertyDB settled;
        FUZZ_REQUIRE(fuzz::Load(settled, second, true));
        FUZZ_REQUIRE(fuzz::Store(settled, true, third));
        // Empty nodes vanish, names with dots move: a second turn at most.
        CPropertyDB last;
        std::string fourth;
        FUZZ_REQUIRE(fuzz::Load(last, third, true) && fuzz::Store(last, true, fourth));
        if (first.find('.') == first.npos && first.find("\"/>") == first.npos) FUZZ_REQUIRE(third == fourth);
    }
    fuzz::Use(database);
    return 0;
}
