// The property database: the one implementation of IPropertyDB, whose header is the manual.
// One thread for one object. It owns its tree; files, sources of copies and values handed in stay the caller's.
#pragma once

#include "afx/array.h"
#include "afx/collections.h"
#include "afx/object.h"
#include "propdb/property_db_interface.h"

#include <string_view>
#include <vector>

class CXMLWriter;
namespace orvik::detail {
class PropertyXmlReader;
}

class ORVIK_API CPropertyDB : public CObject, public virtual IPropertyDB {
public:
    CPropertyDB();
    // The tree alone is copied: not the path, the flags or the using path.
    CPropertyDB(const CPropertyDB& src);
    CPropertyDB& operator=(const CPropertyDB& src);
    ~CPropertyDB() override;

    CString GetLoadFilePath() const override;
    CString GetFileName(int bWithExtension) const override;
    BOOL StoreToFile(CFile* pFile, int bXml, int bFlush) override;
    BOOL StoreToFile(const char* path, int bIfModified) override;
    BOOL LoadFromFile(CFile* pFile, int bXml) override;
    BOOL LoadFromFile(const char* path) override;
    // Whether the XML form, from now on, is written with as many digits of a float or a double as bring back the same bits, or
    // with six (the default). Reading takes either. Not copied with the tree.
    void SetExactReals(BOOL exact) { m_exactReals = exact != FALSE; }
    BOOL IsEmpty() const override;
    BOOL IsModified() const override;
    BOOL GetErrorState() const override;
    void ResetErrorState(int value) override;
    BOOL IsUniqueKey(const char* key) const override;
    BOOL Rename(const char* key, const char* newName) override;
    BOOL IsFullKey(const char* key) const override;
    int Count(const char* key, int bValuesOnly) const override;
    BOOL Copy(const IPropertyDB* src, const char* srcKey, const char* dstKey, int bFullKeys) override;
    BOOL OverlayCopy(const IPropertyDB* src, const char* srcKey, const char* dstKey, int bFullKeys) override;
    BOOL Copy(const CPropertyDB& src, const char* srcKey, const char* dstKey, int bFullKeys);
    BOOL OverlayCopy(const CPropertyDB& src, const char* srcKey, const char* dstKey, int bFullKeys);
    void Serialize(CArchive& ar) override;
    BOOL Find(const char* key) const override;
    BOOL Remove(const char* key) override;
    void RemoveAll() override;
    BOOL Empty() override;
    BOOL EnumAll(CStringArray& out) const override;
    BOOL Enum(const char* key, CStringArray& out, int bFullKeys, int bWithValues) const override;
    BOOL EnumFind(const char* key, const char* part, CStringArray& out, int bFullKeys) const override;
    BOOL EnumWildcard(const char* pattern, CStringArray& out) const override;
    void BeginUsing(const char* path) override;
    void BeginUsingFmt(const char* format, ...) override;
    void EndUsing() override;
    CString GetUsing() const override;
    BOOL SetPath(const char* key) override;

    // Each of these goes through the array function of its kind, and that through the one for objects, so a derived class that
    // overrides those sees every write; the getters likewise, down to GetValueObject.
    BOOL SetValue(const char* key, const CObject* value, int bAbsolute) override;
    BOOL SetValue(const char* key, const LOGFONTA& value) override;
    BOOL SetValue(const char* key, const CFont& value) override;
    BOOL SetValue(const char* key, const CBCGPRect& value) override;
    BOOL SetValue(const char* key, const RECT& value) override;
    BOOL SetValue(const char* key, const POINT& value) override;
    BOOL SetValue(const char* key, const CVXTTimeSpan& value) override;
    BOOL SetValue(const char* key, const CVXTTime& value) override;
    BOOL SetValue(const char* key, unsigned char value) override;
    BOOL SetValue(const char* key, int value) override;
    BOOL SetValue(const char* key, unsigned int value) override;
    BOOL SetValue(const char* key, long value) override;
    BOOL SetValue(const char* key, const CDoubleArray& value) override;
    BOOL SetValue(const char* key, double value) override;
    BOOL SetValue(const char* key, const CFloatArray& value) override;
    BOOL SetValue(const char* key, float value) override;
    BOOL SetValue(const char* key, const CInt32Array& value) override;
    BOOL SetValue(const char* key, const CInt64Array& value) override;
    BOOL SetValue(const char* key, __int64 value) override;
    BOOL SetValue(const char* key, const CDWordArray& value) override;
    BOOL SetValue(const char* key, unsigned long value) override;
    BOOL SetValue(const char* key, const CWordArray& value) override;
    BOOL SetValue(const char* key, const CByteArray& value) override;
    BOOL SetValue(const char* key, unsigned short value) override;
    BOOL SetValue(const char* key, const CStringArray& value) override;
    BOOL SetValue(const char* key, const char* value) override;

    BOOL GetValue(const char* key, CBCGPRect& value) const override;
    BOOL GetValue(const char* key, LOGFONTA& value) const override;
    BOOL GetValue(const char* key, CFont& value) const override;
    BOOL GetValue(const char* key, RECT& value) const override;
    BOOL GetValue(const char* key, POINT& value) const override;
    BOOL GetValue(const char* key, CVXTTime& value) const override;
    BOOL GetValue(const char* key, CVXTTimeSpan& value) const override;
    BOOL GetValue(const char* key, unsigned char& value) const override;
    BOOL GetValue(const char* key, int& value) const override;
    BOOL GetValue(const char* key, unsigned int& value) const override;
    BOOL GetValue(const char* key, long& value) const override;
    BOOL GetValue(const char* key, CDoubleArray& value) const override;
    BOOL GetValue(const char* key, double& value) const override;
    BOOL GetValue(const char* key, CFloatArray& value) const override;
    BOOL GetValue(const char* key, float& value) const override;
    BOOL GetValue(const char* key, CInt32Array& value) const override;
    BOOL GetValue(const char* key, CInt64Array& value) const override;
    BOOL GetValue(const char* key, __int64& value) const override;
    BOOL GetValue(const char* key, CDWordArray& value) const override;
    BOOL GetValue(const char* key, unsigned long& value) const override;
    BOOL GetValue(const char* key, CWordArray& value) const override;
    BOOL GetValue(const char* key, CByteArray& value) const override;
    BOOL GetValue(const char* key, unsigned short& value) const override;
    BOOL GetValue(const char* key, CStringArray& value) const override;
    BOOL GetValue(const char* key, CString& value) const override;
    const CObject* GetValueObject(const char* key, int bAbsolute) const override;

private:
    friend class orvik::detail::PropertyXmlReader;
    class FullKey;

    // The walk down from the root. True when the key was found; `found` may then still be null (see Rename).
    bool Walk(std::string_view fullKey, CObject*& found) const;
    static CObject** MakeEntry(CMapStringToOb& top, std::string_view key);
    BOOL SetEntry(CObject*& entry, const CRuntimeClass* kind, const CObject* value);
    static void DeleteObject(CObject* object);
    static void DeleteChildren(CMapStringToOb& node);

    template <class Array>
    BOOL SetMoving(const char* key, Array& value);
    template <class Array, class Value>
    BOOL SetSingle(const char* key, Value value);
    template <class Array, class Value>
    BOOL GetSingle(const char* key, Value& value) const;
    template <class Array>
    BOOL GetArray(const char* key, Array& value) const;
    template <class Array>
    BOOL GetStructure(const char* key, Array& elements) const;
    BOOL SetLong(const char* key, __int64 value, bool fitsDWord);

    void EnumObjects(CStringArray& out) const;
    static void SortArray(CStringArray& array);

    BOOL WriteForm(CFile& file, bool xml);
    bool ReadForm(CFile& file, bool xml);
    BOOL SaveAsXML(CFile* pFile);
    bool WriteXMLNodes(CMapStringToOb* node, CXMLWriter& writer);
    bool LoadXML(CFile& file);
    void StoreTree(CArchive& ar);
    void LoadTree(CArchive& ar);

    CString m_strFilePath;
    BOOL m_bModified = FALSE;
    mutable BOOL m_bError = FALSE;
    CMapStringToOb m_root{10};
    CWordArray m_usingStack;  // lengths of the using path before each BeginUsing
    CString m_strUsing;       // empty, or ending in "."
    // What Rename put something else in the place of: it stays alive as long as the database, for whoever still looks at it.
    std::vector<CObject*> m_replaced;
    // The array whose contents SetValue may take over instead of copying them; see SetMoving.
    const CObject* m_movable = nullptr;
    bool m_exactReals = false;
};
