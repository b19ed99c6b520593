#pragma once

#include <memory>
#include <type_traits>
#include <utility>

/// Destroys an object as what it was made as, though only its base is known.
template <class Base>
struct MadeAs {
    void (*destroy)(Base*) = nullptr;
    void operator()(Base* object) const { destroy(object); }
};

/// Owns an object by a base without a virtual destructor. Owners by different classes can share one
/// `Base`, the lowest of them, and thereby hand their objects on to each other.
template <class Held, class Base = Held>
using BaseOwner = std::unique_ptr<Held, MadeAs<Base>>;

/// Makes an object and its owner, for instance `makeOwned<OperandPtr, CIntOperand>(5)`.
template <class Owner, class Made, class... Arguments>
Owner makeOwned(Arguments&&... arguments) {
    static_assert(std::is_final_v<Made>, "a class derived from it would be destroyed wrongly");
    return Owner(new Made(std::forward<Arguments>(arguments)...),
                 {[](auto* object) { std::default_delete<Made>()(static_cast<Made*>(object)); }});
}
