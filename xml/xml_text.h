// The escapes of seven letters in the XML dialect. A value type; constant once made.
#pragma once

#include "afx/string.h"

namespace orvik::detail {
// The seven letters' escapes, made from their Windows-1252 codes: å ä ö Å Ä Ö and the degree sign.
struct XmlEntities {
    static constexpr unsigned char kCode[7] = {229, 228, 246, 197, 196, 214, 176};
    ORVIK_API XmlEntities();
    CString m_text[7];  // "&#xe5;" and so on, in the order of kCode
};
}  // namespace orvik::detail
