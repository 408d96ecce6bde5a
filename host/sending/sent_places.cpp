#include "host/sending/sent_places.h"

#include "afx/collections.h"
#include "host/session/database_file.h"
#include "propdb/property_db.h"

namespace {
constexpr char kFolder[] = "Loggers";
}

bool SentPlaces::Load(const std::string& path) {
    CPropertyDB db;
    if (!FileExists(path) || !db.LoadFromFile(path.c_str())) return false;
    CStringArray keys;
    db.Enum(kFolder, keys, FALSE, FALSE);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string at = std::string(kFolder) + "." + keys.GetAt(i).GetString() + ".";
        SentPlace place;
        CString file;
        __int64 item = 0, offset = 0;
        const bool whole = db.GetValue((at + "sFile").c_str(), file) && db.GetValue((at + "tBegan").c_str(), place.began) &&
                           db.GetValue((at + "nItem").c_str(), item) && db.GetValue((at + "nOffset").c_str(), offset) &&
                           db.GetValue((at + "tLast").c_str(), place.time);
        if (!whole || item < 0 || offset < item) continue;
        place.file = file.GetString();
        place.item = static_cast<unsigned __int64>(item);
        place.offset = static_cast<unsigned __int64>(offset);
        places[keys.GetAt(i).GetString()] = place;
    }
    return true;
}

DWORD SentPlaces::Store(const std::string& path) const {
    CPropertyDB db;
    db.SetPath(kFolder);
    for (const auto& [key, place] : places) {
        const std::string at = std::string(kFolder) + "." + key + ".";
        db.SetValue((at + "sFile").c_str(), place.file.c_str());
        db.SetValue((at + "tBegan").c_str(), place.began);
        db.SetValue((at + "nItem").c_str(), static_cast<__int64>(place.item));
        db.SetValue((at + "nOffset").c_str(), static_cast<__int64>(place.offset));
        db.SetValue((at + "tLast").c_str(), place.time);
    }
    return StoreOften(path, db);
}
