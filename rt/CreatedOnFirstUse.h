#pragma once
// An object reference that creates its object the first time it is read, as the VB
// declaration "Dim x As New T" does: reading it never yields nothing. Setting it replaces
// the object, and a reference obtained before that dies with the old object unless someone
// else still holds it.

#include <memory>

namespace rt {

template <typename T>
class CreatedOnFirstUse {
public:
    T& get() const
    {
        if (!object_)
            object_ = std::make_shared<T>();
        return *object_;
    }
    // The object itself, made if need be, for whoever keeps a reference to it.
    std::shared_ptr<T> shared() const
    {
        get();
        return object_;
    }
    void set(std::shared_ptr<T> object) { object_ = std::move(object); }
    void reset() { object_.reset(); }

private:
    mutable std::shared_ptr<T> object_;
};

}  // namespace rt
