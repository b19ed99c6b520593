#pragma once

#include <map>
#include <memory>
#include <utility>

/// Handles that stand for objects of a dry run. No handle of the system has the same value, as each
/// is an address in this process.
template <class Handle, class Object>
class OwnHandles {
public:
    Handle give(Object object) {
        auto owned = std::make_unique<Object>(std::move(object));
        const auto handle = reinterpret_cast<Handle>(owned.get());
        objects.emplace(handle, std::move(owned));
        return handle;
    }

    /// Null for a handle that isn't one of these.
    Object* find(Handle handle) const {
        const auto found = objects.find(handle);
        return found == objects.end() ? nullptr : found->second.get();
    }

    /// Whether it was one of these.
    bool close(Handle handle) { return objects.erase(handle) != 0; }

    template <class Visitor>
    void visit(Visitor&& visitor) const {
        for (const auto& [handle, object] : objects)
            visitor(*object);
    }

private:
    std::map<Handle, std::unique_ptr<Object>> objects;
};
