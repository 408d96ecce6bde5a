// What several of the database's source files share of its private templates. Internal.
#pragma once

#include "propdb/property_db.h"

#include <typeinfo>

// Sets a value that nobody needs afterwards, by taking its contents over. Not where a derived class may look at it on the way.
template <class Array>
BOOL CPropertyDB::SetMoving(const char* key, Array& value) {
    if (typeid(*this) != typeid(CPropertyDB)) return SetValue(key, value);
    struct Movable {
        CPropertyDB& database;
        const CObject* const before;
        Movable(CPropertyDB& db, const CObject* object) : database(db), before(db.m_movable) { db.m_movable = object; }
        ~Movable() { database.m_movable = before; }
    } const movable(*this, &value);
    return SetValue(key, value);
}
