// Ownership through a base class that has no virtual destructor.
//
// The model's classes tell their kinds by strings and dispatch nothing, so a container of base
// pointers must itself remember how to destroy what it was given.
#pragma once

#include <memory>

template <typename Base>
using owned = std::unique_ptr<Base, void (*)(Base*)>;

// Takes over *object*; it will be destroyed as a Derived.
template <typename Base, typename Derived>
owned<Base> own(std::unique_ptr<Derived> object) {
    return owned<Base>(object.release(), [](Base* base) { delete static_cast<Derived*>(base); });
}
