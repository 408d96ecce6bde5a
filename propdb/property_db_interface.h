// The property database as everyone sees it: a tree of named, typed values. Persistent objects store themselves into one with
// their OnDBSet(IPropertyDB*) and load themselves with OnDBGet(IPropertyDB*), under short keys such as "sText" or "fLeft". One
// thread (the user-interface thread) for one database. The database owns every value: what is set is copied in, what is got is
// copied out; only GetValueObject hands out the stored object itself, read-only and valid until it is removed or replaced.
//
// Keys: segments joined by ".". A "." between two quotes of the same kind (' or ") separates nothing, and the quotes stay part of
// the name; after a quote that does not end, the rest of the key is one segment, and so it is from a segment that begins with
// ".". Unless a function says otherwise the key is relative to the using path (BeginUsing); an empty key then names the node
// used. Names are compared exactly. Null texts are empty texts.
//
// Kinds: a value has one of eight kinds, each an array class. A key keeps its kind for life, and no getter converts, but values
// that share a kind read one another's keys:
//   CStringArray  const char*, CString            CWordArray    unsigned char, unsigned short
//   CDWordArray   int, unsigned int, POINT, RECT; long and unsigned long where they have 32 bits
//   CInt64Array   __int64, CVXTTime, CVXTTimeSpan (microseconds); long and unsigned long where they have 64 bits
//   CFloatArray   float                           CDoubleArray  double, CBCGPRect
//   CByteArray    LOGFONTA, CFont (its LOGFONTA)  CInt32Array   only as an array
// A 64-bit long goes on writing a CDWordArray key as long as the value fits its 32 bits, and reads one with its sign (an unsigned
// long without); what does not fit is refused, never cut.
//
// Results are non-zero for success. Functions that fail change nothing, report nothing else, and leave the caller's variable
// alone.
#pragma once

#include "afx/array.h"
#include "afx/file.h"
#include "afx/string.h"
#include "frame/numeric_arrays.h"
#include "platform/win32.h"
#include "time/time_point.h"
#include "time/time_span.h"

class CArchive;
class CBCGPRect;
class CFont;

class ORVIK_API IPropertyDB {
public:
    virtual ~IPropertyDB();

    // The full path of the file last loaded or stored, empty before; and the file's name in it, with or without its extension.
    virtual CString GetLoadFilePath() const = 0;
    virtual CString GetFileName(int bWithExtension) const = 0;

    // To an open file, from its position on: the XML form for a non-zero bXml, else the archive form. With bFlush the file is
    // flushed to the disk before success is reported. A failure leaves an incomplete file.
    virtual BOOL StoreToFile(CFile* pFile, int bXml, int bFlush) = 0;
    // To a file by name: the XML form for a name that ends in ".xml" (in any case), else the archive form. The file is replaced
    // as a whole and only once all is on the disk; a failure leaves the file that was there. A symbolic link stays and its target
    // is replaced; the target's permissions stay. With bIfModified nothing is written when the database is unmodified and `path`
    // is the existing file that it was last loaded from or stored to. What the system said of a file that could not be written is
    // the thread's last error.
    virtual BOOL StoreToFile(const char* path, int bIfModified) = 0;
    // Both loads add to what is there. After a failure the values read before it remain, and the using path is what it was
    // before. Neither raises an exception. A file that breaks off is a failure.
    virtual BOOL LoadFromFile(CFile* pFile, int bXml) = 0;
    virtual BOOL LoadFromFile(const char* path) = 0;
    // A load or store that succeeds clears the modified flag; those that know a path record it.

    virtual BOOL IsEmpty() const = 0;
    virtual BOOL IsModified() const = 0;
    // Set to 1 by each GetValueObject that finds nothing, so by every getter of a missing key; stays until reset.
    virtual BOOL GetErrorState() const = 0;
    virtual void ResetErrorState(int value) = 0;

    // These two take the key as it is, whatever the using path. Unique: the key can be created. Full: it names a value.
    virtual BOOL IsUniqueKey(const char* key) const = 0;
    // Renames within the node; newName is one segment. What had that name is replaced. A key that does not exist is renamed too:
    // newName is then present, without a node or value.
    virtual BOOL Rename(const char* key, const char* newName) = 0;
    virtual BOOL IsFullKey(const char* key) const = 0;
    // A value's number of elements, 0 for a CByteArray and a CInt32Array; a node's number of children, or with bValuesOnly of
    // values among them; -1 when there is nothing of that key.
    virtual int Count(const char* key, int bValuesOnly) const = 0;

    // Copy empties this database first; OverlayCopy keeps what the source does not hold, and leaves values alone whose kind
    // differs. All source keys that begin with the text srcKey (all, if null) are copied to dstKey (the top, if null): under
    // their full keys relative to the using path with bFullKeys, otherwise without srcKey and regardless of the using path. An
    // empty dstKey raises the invalid-argument exception, and so do a null srcKey, and one without "." that names a value, with
    // bFullKeys 0.
    virtual BOOL Copy(const IPropertyDB* src, const char* srcKey, const char* dstKey, int bFullKeys) = 0;
    virtual BOOL OverlayCopy(const IPropertyDB* src, const char* srcKey, const char* dstKey, int bFullKeys) = 0;

    // The archive form. Clears the modified flag. A damaged archive raises an archive exception; the database is usable
    // afterwards.
    virtual void Serialize(CArchive& ar) = 0;

    virtual BOOL Find(const char* key) const = 0;
    virtual BOOL Remove(const char* key) = 0;  // with everything below
    virtual void RemoveAll() = 0;
    virtual BOOL Empty() = 0;  // removes the node used, itself included; nothing without a using path

    // Lists of keys, sorted by their bytes.
    virtual BOOL EnumAll(CStringArray& out) const = 0;  // full keys of all values and empty nodes, whatever the using path
    // A node's child nodes, and its values with bWithValues; each as `key`.name with bFullKeys, unless the key is empty.
    virtual BOOL Enum(const char* key, CStringArray& out, int bFullKeys, int bWithValues) const = 0;
    // A node's children whose name contains `part`; as `key`.name with bFullKeys, also when the key is empty.
    virtual BOOL EnumFind(const char* key, const char* part, CStringArray& out, int bFullKeys) const = 0;
    // Appends the keys that fit a pattern in which ".*" stands for one segment of any name. Non-zero when any was appended.
    virtual BOOL EnumWildcard(const char* pattern, CStringArray& out) const = 0;

    // The using path: a prefix to keys, relative to the one before. A path that would pass 65,535 characters is refused: it stays
    // as it was, and the call still counts for EndUsing. Without a BeginUsing, EndUsing does nothing.
    virtual void BeginUsing(const char* path) = 0;
    virtual void BeginUsingFmt(const char* format, ...) = 0;  // printf's language; at most 254 bytes, no letter cut
    virtual void EndUsing() = 0;
    virtual CString GetUsing() const = 0;  // empty, or ending in "."

    // Makes a node, unless it is there. 0 for an empty key, and where a value stands in the way.
    virtual BOOL SetPath(const char* key) = 0;

    // 0 where a node stands, a value is in the way, or the key has another kind. A CMapStringToOb makes a node (see SetPath) and
    // is not copied. bAbsolute: the key as it is, whatever the using path.
    virtual BOOL SetValue(const char* key, const CObject* value, int bAbsolute) = 0;
    virtual BOOL SetValue(const char* key, const LOGFONTA& value) = 0;
    virtual BOOL SetValue(const char* key, const CFont& value) = 0;
    virtual BOOL SetValue(const char* key, const CBCGPRect& value) = 0;  // stored as left, right, top, bottom
    virtual BOOL SetValue(const char* key, const RECT& value) = 0;
    virtual BOOL SetValue(const char* key, const POINT& value) = 0;
    virtual BOOL SetValue(const char* key, const CVXTTimeSpan& value) = 0;
    virtual BOOL SetValue(const char* key, const CVXTTime& value) = 0;
    virtual BOOL SetValue(const char* key, unsigned char value) = 0;
    virtual BOOL SetValue(const char* key, int value) = 0;
    virtual BOOL SetValue(const char* key, unsigned int value) = 0;
    virtual BOOL SetValue(const char* key, long value) = 0;
    virtual BOOL SetValue(const char* key, const CDoubleArray& value) = 0;
    virtual BOOL SetValue(const char* key, double value) = 0;
    virtual BOOL SetValue(const char* key, const CFloatArray& value) = 0;
    virtual BOOL SetValue(const char* key, float value) = 0;
    virtual BOOL SetValue(const char* key, const CInt32Array& value) = 0;
    virtual BOOL SetValue(const char* key, const CInt64Array& value) = 0;
    virtual BOOL SetValue(const char* key, __int64 value) = 0;
    virtual BOOL SetValue(const char* key, const CDWordArray& value) = 0;
    virtual BOOL SetValue(const char* key, unsigned long value) = 0;
    virtual BOOL SetValue(const char* key, const CWordArray& value) = 0;
    virtual BOOL SetValue(const char* key, const CByteArray& value) = 0;
    virtual BOOL SetValue(const char* key, unsigned short value) = 0;
    virtual BOOL SetValue(const char* key, const CStringArray& value) = 0;
    virtual BOOL SetValue(const char* key, const char* value) = 0;

    // Scalars read the first element. An array without elements reads as 0 and empties the caller's array. POINT, RECT and
    // CBCGPRect raise the invalid-argument exception on an array with fewer elements than they have; LOGFONTA wants exactly its
    // 60 bytes.
    virtual BOOL GetValue(const char* key, CBCGPRect& value) const = 0;
    virtual BOOL GetValue(const char* key, LOGFONTA& value) const = 0;
    virtual BOOL GetValue(const char* key, CFont& value) const = 0;  // replaces the font's object
    virtual BOOL GetValue(const char* key, RECT& value) const = 0;
    virtual BOOL GetValue(const char* key, POINT& value) const = 0;
    virtual BOOL GetValue(const char* key, CVXTTime& value) const = 0;
    virtual BOOL GetValue(const char* key, CVXTTimeSpan& value) const = 0;
    virtual BOOL GetValue(const char* key, unsigned char& value) const = 0;  // the low byte of the stored word
    virtual BOOL GetValue(const char* key, int& value) const = 0;
    virtual BOOL GetValue(const char* key, unsigned int& value) const = 0;
    virtual BOOL GetValue(const char* key, long& value) const = 0;
    virtual BOOL GetValue(const char* key, CDoubleArray& value) const = 0;
    virtual BOOL GetValue(const char* key, double& value) const = 0;
    virtual BOOL GetValue(const char* key, CFloatArray& value) const = 0;
    virtual BOOL GetValue(const char* key, float& value) const = 0;
    virtual BOOL GetValue(const char* key, CInt32Array& value) const = 0;
    virtual BOOL GetValue(const char* key, CInt64Array& value) const = 0;
    virtual BOOL GetValue(const char* key, __int64& value) const = 0;
    virtual BOOL GetValue(const char* key, CDWordArray& value) const = 0;
    virtual BOOL GetValue(const char* key, unsigned long& value) const = 0;
    virtual BOOL GetValue(const char* key, CWordArray& value) const = 0;
    virtual BOOL GetValue(const char* key, CByteArray& value) const = 0;
    virtual BOOL GetValue(const char* key, unsigned short& value) const = 0;
    virtual BOOL GetValue(const char* key, CStringArray& value) const = 0;
    virtual BOOL GetValue(const char* key, CString& value) const = 0;

    // The stored node or value; null, and the error flag set, when there is none.
    virtual const CObject* GetValueObject(const char* key, int bAbsolute) const = 0;
};
