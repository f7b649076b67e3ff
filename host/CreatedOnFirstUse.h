#pragma once
// An object reference that creates its object the first time it is read, as the VB
// declaration "Dim x As New T" does: reading it never yields nothing. Setting it replaces
// the object; a reference obtained before that stays valid as long as someone else still
// holds the old object, so hold the shared pointer (object()) when that matters.

#include <memory>

namespace host {

template <typename T>
class CreatedOnFirstUse {
public:
    T& get() const
    {
        if (!object_)
            object_ = std::make_shared<T>();
        return *object_;
    }
    std::shared_ptr<T> object() const
    {
        get();
        return object_;
    }
    void set(std::shared_ptr<T> object) { object_ = std::move(object); }
    bool isCreated() const { return object_ != nullptr; }
    void reset() { object_.reset(); }

private:
    mutable std::shared_ptr<T> object_;
};

}  // namespace host
