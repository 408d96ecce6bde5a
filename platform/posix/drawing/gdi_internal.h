// GDI objects as they are kept, and the table of their handles. The table has a lock of its own, below every other; an object's
// content belongs to whoever may use the object (gdi.h, bitmap.h, region.h, dc.h).
#pragma once

#include <memory>
#include <utility>

#include "platform/posix/drawing/canvas_internal.h"

namespace orvik::detail {

struct GdiObject {
    explicit GdiObject(DWORD objectType) : type(objectType) {}
    GdiObject(const GdiObject&) = delete;
    GdiObject& operator=(const GdiObject&) = delete;
    virtual ~GdiObject() = default;

    const DWORD type;  // OBJ_
    // Kept by the table, under its lock:
    bool system = false;  // deleting does nothing
    bool doomed = false;  // deleted while selected
    int selections = 0;   // DC states that have it
};

struct PenObject : GdiObject {
    explicit PenObject(DWORD objectType) : GdiObject(objectType) {}
    DWORD style = PS_SOLID;  // with PS_GEOMETRIC, caps and joins
    int width = 1;
    COLORREF color = 0;
    bool fromDc = false;  // DC_PEN
};

struct BrushObject : GdiObject {
    BrushObject() : GdiObject(OBJ_BRUSH) {}
    UINT style = BS_SOLID;
    COLORREF color = 0;
    int systemColour = -1;  // COLOR_ number of a brush that follows the scheme
    int hatch = 0;
    std::vector<uint32_t> tile;  // of a pattern brush
    int tileWidth = 0, tileHeight = 0;
    bool tileMonochrome = false;
    HBITMAP pattern = nullptr;
    bool fromDc = false;  // DC_BRUSH
    COLORREF Colour() const { return systemColour < 0 ? color : GetSysColor(systemColour); }
};

struct FontObject : GdiObject {
    FontObject() : GdiObject(OBJ_FONT) {}
    LOGFONTA description{};
};

struct BitmapObject : GdiObject {
    BitmapObject() : GdiObject(OBJ_BITMAP) {}
    std::shared_ptr<Canvas> canvas;
    bool section = false, topDown = false;
    HDC selectedIn = nullptr;
};

struct RegionObject : GdiObject {
    RegionObject() : GdiObject(OBJ_REGION) {}
    PixelRegion pixels;
};

HGDIOBJ AddGdiObject(std::shared_ptr<GdiObject> object);
// Null for a handle without an object.
std::shared_ptr<GdiObject> FindGdiObject(HGDIOBJ handle);
// Takes the handle away; the object lives on while others hold it. False for a handle without an object.
bool RemoveGdiObject(HGDIOBJ handle);

template <class T>
std::shared_ptr<T> FindGdi(HGDIOBJ handle, DWORD type) {
    std::shared_ptr<GdiObject> found = FindGdiObject(handle);
    if (found == nullptr || found->type != type) return nullptr;
    return std::static_pointer_cast<T>(std::move(found));
}
// Either kind of pen.
std::shared_ptr<PenObject> FindPen(HGDIOBJ handle);
// A brush, or the system colour that a small number plus one names.
std::shared_ptr<BrushObject> FindBrush(HBRUSH brush);

// An object as a DC state has it: held, counted, and deleted at the end if that was asked for meanwhile.
template <class T>
class Selected {
public:
    Selected() = default;
    Selected(HGDIOBJ handle, std::shared_ptr<T> object);
    Selected(const Selected& other) : Selected(other.m_handle, other.m_object) {}
    Selected(Selected&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)), m_object(std::move(other.m_object)) {}
    Selected& operator=(Selected other) noexcept {
        std::swap(m_handle, other.m_handle);
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Selected();
    HGDIOBJ Handle() const { return m_handle; }
    const T& operator*() const { return *m_object; }
    const T* operator->() const { return m_object.get(); }
    explicit operator bool() const { return m_object != nullptr; }

private:
    HGDIOBJ m_handle = nullptr;
    std::shared_ptr<T> m_object;
};

void CountSelection(GdiObject& object);
void UncountSelection(HGDIOBJ handle, GdiObject& object);

template <class T>
Selected<T>::Selected(HGDIOBJ handle, std::shared_ptr<T> object) : m_handle(handle), m_object(std::move(object)) {
    if (m_object != nullptr) CountSelection(*m_object);
}
template <class T>
Selected<T>::~Selected() {
    if (m_object != nullptr) UncountSelection(m_handle, *m_object);
}

// The bitmap of one black pixel that every memory DC begins with.
HBITMAP DefaultBitmap();
// A canvas over pixels of 32 bits, black at first. `bottomUp` stores the last row first; a monochrome one holds black and white.
std::shared_ptr<Canvas> MakePixelCanvas(int width, int height, bool bottomUp, bool monochrome);

}  // namespace orvik::detail
