// The table behind HANDLE. A lookup is two atomic steps and no lock, for ReadFile of a waiting byte looks up three handles.
#pragma once

#include <memory>
#include <utility>

#include "platform/posix/kernel/errors_internal.h"
#include "platform/posix/kernel/handles.h"

namespace orvik::detail {

// An object that a handle can name. Shared: the table holds one reference; threads and pending operations hold others.
class KernelObject {
public:
    // What an object is, as bits: a look-up asks for one and needs no run-time type search.
    enum Kind : unsigned {
        kWaitable = 1,
        kEvent = 2,
        kThread = 4,
        kIo = 8,
        kFile = 16,
        kPort = 32,
        kRegistryKey = 64,
        kDeviceList = 128,
        kSearch = 256
    };

    explicit KernelObject(unsigned kinds) : m_kinds(kinds) {}
    KernelObject(const KernelObject&) = delete;
    KernelObject& operator=(const KernelObject&) = delete;
    virtual ~KernelObject() = default;

    // Called once, by the thread that closes the handle, while other threads may still be inside the object's methods.
    virtual void Closing() {}

    bool Is(Kind kind) const { return (m_kinds & kind) != 0; }

private:
    const unsigned m_kinds;
};

struct HandleSlot;

// A looked-up object, held alive while this value lives. Empty for a bad handle.
class PinnedObject {
public:
    PinnedObject() = default;
    explicit PinnedObject(HANDLE handle);
    PinnedObject(PinnedObject&& other) noexcept : m_slot(std::exchange(other.m_slot, nullptr)) {}
    PinnedObject& operator=(PinnedObject&& other) noexcept {
        std::swap(m_slot, other.m_slot);
        return *this;
    }
    ~PinnedObject() {
        if (m_slot) Release();
    }

    KernelObject* Get() const;
    const std::shared_ptr<KernelObject>& Shared() const;  // only for a non-empty pin

private:
    void Release();
    HandleSlot* m_slot = nullptr;
};

// The object of a handle as a T; empty (false) if the handle is bad or names another kind. T::kKind is the kind of every T.
template <class T>
class Pinned {
public:
    explicit Pinned(HANDLE handle) : m_pin(handle) {
        KernelObject* object = m_pin.Get();
        if (object != nullptr && object->Is(T::kKind)) m_object = static_cast<T*>(object);
    }
    explicit operator bool() const { return m_object != nullptr; }
    T* operator->() const { return m_object; }
    T& operator*() const { return *m_object; }
    std::shared_ptr<T> Shared() const { return std::static_pointer_cast<T>(m_pin.Shared()); }

private:
    PinnedObject m_pin;
    T* m_object = nullptr;
};

// Whether the handle is open at this moment; for who holds the object anyway.
bool IsOpenHandle(HANDLE handle);
// A new handle for the object; null with last error 4 when 65,536 handles are open.
HANDLE NewHandle(std::shared_ptr<KernelObject> object);
// Error code: 0, or 6 for a bad handle.
DWORD RemoveHandle(HANDLE handle);

// Sets the last error if `error` is not 0, and tells whether it was 0: the tail of most Win32 functions.
inline BOOL Finish(DWORD error) {
    if (error == ERROR_SUCCESS) return TRUE;
    SetLastError(error);
    return FALSE;
}

}  // namespace orvik::detail
