// Typed reading of archived fields.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "ZRMPlatform/Ports/ZRMKeyedArchive.h"

// False when the field is there and of another type; otherwise `value` is what it holds, or absent.
template <class Value>
bool zrm_readArchiveField(const ZRMArchiveFields& fields, const std::string& key,
                          std::optional<Value>& value) {
    value.reset();
    const auto found = fields.find(key);
    if (found == fields.end()) {
        return true;
    }
    const auto* held = std::get_if<Value>(&found->second);
    if (held == nullptr) {
        return false;
    }
    value = *held;
    return true;
}
