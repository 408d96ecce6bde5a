// Which object has which handle, and objects for handles that none has. Internal. Owner maps are for
// any thread, rings for one.
#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace orvik::detail {

// Objects by the handle they own. Any thread; the objects themselves stay with theirs.
template <class Handle, class Object>
class OwnerMap {
public:
    Object* Find(Handle handle) {
        const std::lock_guard lock(m_lock);
        const auto found = m_objects.find(handle);
        return found != m_objects.end() ? found->second : nullptr;
    }
    void Set(Handle handle, Object* object) {
        const std::lock_guard lock(m_lock);
        m_objects[handle] = object;
    }
    // Leaves a handle alone that another object has got meanwhile.
    void Remove(Handle handle, Object* object) {
        const std::lock_guard lock(m_lock);
        const auto found = m_objects.find(handle);
        if (found != m_objects.end() && found->second == object) m_objects.erase(found);
    }

private:
    std::mutex m_lock;
    std::unordered_map<Handle, Object*> m_objects;
};

// One thread's temporary objects: so many, then the oldest goes.
template <class Object>
class TemporaryRing {
public:
    template <class Fits, class Make>
    Object* Get(Fits fits, Make make) {
        for (const std::unique_ptr<Object>& object : m_objects)
            if (object != nullptr && fits(*object)) return object.get();
        std::unique_ptr<Object>& place = m_objects[m_next];
        m_next = (m_next + 1) % m_objects.size();
        place = make();
        return place.get();
    }
    void Clear() {
        for (std::unique_ptr<Object>& object : m_objects) object.reset();
    }

private:
    std::array<std::unique_ptr<Object>, 64> m_objects;
    size_t m_next = 0;
};

}  // namespace orvik::detail
