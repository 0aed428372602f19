#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDictionary/NSDictionary+ZRMCoreKit.h"

namespace {

void mergeInto(ZRMDictionary& target, const ZRMDictionary& source) {
    for (const auto& [key, value] : source) {
        auto* const held = target.if_contains(key);
        if (held == nullptr) {
            target.emplace(key, value);
        } else if (held->is_object() && value.is_object()) {
            mergeInto(held->get_object(), value.get_object());
        } else {
            *held = value;
        }
    }
}

}  // namespace

ZRMDictionary zrm_mergeDictionary(ZRMDictionary first, const ZRMDictionary& with) {
    mergeInto(first, with);
    return first;
}

ZRMDictionary zrm_dictionaryByMergingWith(ZRMDictionary self, const ZRMDictionary& other) {
    return zrm_mergeDictionary(std::move(self), other);
}
