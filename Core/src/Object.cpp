#include <qel/Object.h>

namespace qel {

Object::Object() = default;
Object::Object(Object const& other) = default;
Object& Object::operator=(Object const& other) = default;
Object::~Object() noexcept(false) = default;

void Object::destroy() { destroy(this); }

// Kept apart from the member: inlined there, its test would count as always false, and a call on a null pointer would
// crash instead of doing nothing.
[[gnu::noipa]] void Object::destroy(Object* object)
{
    if (!object)
        return;
    try {
        delete object;
    } catch (...) {
        // The memory is free all the same, and the caller has nothing left to act on.
    }
}

} // namespace qel
