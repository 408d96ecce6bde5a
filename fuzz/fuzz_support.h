// What the database's fuzz targets share.
#pragma once

#include "propdb/property_db.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// A broken invariant ends the run like a crash, so that the input is kept.
#define FUZZ_REQUIRE(condition)                                                          \
    do {                                                                                 \
        if (!(condition)) {                                                              \
            std::fprintf(stderr, "%s:%d: broken: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                \
        }                                                                                \
    } while (false)

namespace fuzz {
inline bool Load(CPropertyDB& database, std::string bytes, bool xml) {
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    return database.LoadFromFile(&file, xml) != 0;
}

inline bool Store(CPropertyDB& database, bool xml, std::string& bytes) {
    CMemFile file;
    if (!database.StoreToFile(&file, xml, 0)) return false;
    bytes.assign(reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<size_t>(file.GetLength()));
    return true;
}

// Whatever was loaded, the database works.
inline void Use(CPropertyDB& database) {
    FUZZ_REQUIRE(database.GetUsing().IsEmpty());
    CStringArray keys;
    database.EnumAll(keys);
    for (INT_PTR i = 0; i < keys.GetSize() && i < 50; ++i) {
        database.Count(keys[i], 1);
        CString text;
        database.GetValue(keys[i], text);
        database.GetValueObject(keys[i], 1);
    }
    database.Remove("a");
    FUZZ_REQUIRE(database.SetValue("a", 1));
}
}  // namespace fuzz
