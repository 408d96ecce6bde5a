// Property databases in XML that people and their editors wrote: the elements of the form that the module writes
// (docs/formats.md), by the rules of XML itself. What the module's own reader takes for something else or passes over is read or
// refused here. One thread. Files are borrowed.
#pragma once

#include <string>

#include "host/session/xml_document.h"
#include "propdb/property_db.h"

// How a file is written. Its own dialect is the module's to read; see LoadDatabase for who reads what first.
struct XmlManner {
    enum Kind {
        Dialect,  // nothing in it that the module would not write
        Foreign,  // UTF-8, with something that XML knows and the module does not
        NotUtf8
    };
    Kind kind = Dialect;
    unsigned line = 1, column = 1;  // of the first byte that is no UTF-8
};
// Reads to the end of the file.
XmlManner MannerOf(CFile& file);

// Adds to an empty database from the file's position on. An XmlFault for anything that it cannot
// take: elements and attributes of other names, other types, numbers that are none, sizes that do not fit, keys that come
// twice; the database then holds a part. `type` and `size` may be left out: text, and as many
// elements as there are.
void LoadStandardXml(CFile& file, CPropertyDB& db);
