// Trees of maps as archives make them: who loads one owns every object in it.
#pragma once

#include <string_view>

#include "afx/collections.h"

namespace afx_test {
// Deletes everything below the map, and empties it.
inline void DeleteTree(CMapStringToOb& map) {
    for (POSITION position = map.GetStartPosition(); position != nullptr;) {
        std::string_view key;
        CObject* object = nullptr;
        map.GetNextAssoc(position, key, object);
        if (auto* node = DYNAMIC_DOWNCAST(CMapStringToOb, object)) DeleteTree(*node);
        delete object;
    }
    map.RemoveAll();
}
}  // namespace afx_test
