// Look-ups in sets.
#pragma once

#include <unordered_set>

// The member of the set that equals the object, or nullptr. It lives as long as it stays in the
// set.
template <class Object>
const Object* zrm_objectAtObject(const std::unordered_set<Object>& set, const Object& object) {
    const auto found = set.find(object);
    return found == set.end() ? nullptr : &*found;
}
