// What the property database's tests say in their own words.
#pragma once

#include "afx/exception.h"
#include "propdb/property_db.h"
#include "tests/support/raises.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using Keys = std::vector<std::string>;

inline Keys ToKeys(const CStringArray& array) {
    Keys keys;
    for (INT_PTR i = 0; i < array.GetSize(); ++i)
        keys.emplace_back(array[i].GetString(), static_cast<size_t>(array[i].GetLength()));
    return keys;
}

inline Keys AllKeys(const CPropertyDB& database) {
    CStringArray keys;
    database.EnumAll(keys);
    return ToKeys(keys);
}

// The object, if it is of that class.
template <class Class>
const Class* As(const CObject* object) {
    return static_cast<const Class*>(AfxDynamicDownCast(RUNTIME_CLASS(Class), object));
}

// What a value holds, with its kind; nodes are "node", missing keys "none".
inline std::string Described(const CPropertyDB& database, const char* key) {
    const CObject* const object = database.GetValueObject(key, 1);
    if (!object) return "none";
    std::string text = object->GetRuntimeClass()->m_lpszClassName;
    const auto list = [&text](const auto& array, auto show) {
        for (INT_PTR i = 0; i < array.GetSize(); ++i) text += ' ' + show(array[i]);
    };
    const auto number = [](auto value) { return std::to_string(value); };
    const auto bits = [](auto value) {
        char exact[64];
        std::snprintf(exact, sizeof exact, "%a", static_cast<double>(value));
        return std::string(exact);
    };
    if (auto* a = As<CStringArray>(object)) list(*a, [](const CString& s) { return '[' + std::string(s.GetView()) + ']'; });
    if (auto* a = As<CByteArray>(object)) list(*a, number);
    if (auto* a = As<CWordArray>(object)) list(*a, number);
    if (auto* a = As<CDWordArray>(object)) list(*a, number);
    if (auto* a = As<CFloatArray>(object)) list(*a, bits);
    if (auto* a = As<CDoubleArray>(object)) list(*a, bits);
    if (auto* a = As<CInt64Array>(object)) list(*a, number);
    if (auto* a = As<CInt32Array>(object)) list(*a, number);
    return text;
}

// The whole database as text: every key with what it holds.
inline std::string Contents(const CPropertyDB& database) {
    std::string all;
    for (const std::string& key : AllKeys(database)) all += key + " = " + Described(database, key.c_str()) + '\n';
    return all;
}

inline bool RaisesInvalidArgument(const std::function<void()>& call) { return Raises<CInvalidArgException>(call); }
