// What several of the database's source files share of its private templates. Internal.
#pragma once

#include "propdb/property_db.h"

#include <typeinfo>

// A derived class may look at what passes through the virtual functions; without one, nobody can tell which way a value takes.
namespace orvik::detail {
inline bool IsOverridden(const CPropertyDB& database) { return typeid(database) != typeid(CPropertyDB); }
}  // namespace orvik::detail

// Sets a value that nobody needs afterwards, by taking its contents over. Not where a derived class may look at it on the way.
template <class Array>
BOOL CPropertyDB::SetMoving(const char* key, Array& value) {
    if (orvik::detail::IsOverridden(*this)) return SetValue(key, value);
    struct Movable {
        CPropertyDB& database;
        const CObject* const before;
        Movable(CPropertyDB& db, const CObject* object) : database(db), before(db.m_movable) { db.m_movable = object; }
        ~Movable() { database.m_movable = before; }
    } const movable(*this, &value);
    return SetValue(key, value);
}
