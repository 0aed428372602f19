#include "ZRMPlatform/Ports/Values/ZRMUrlRequest.h"

#include <algorithm>

namespace {

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                : character;
}

bool sameName(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowered, lowered);
}

}  // namespace

void ZRMHttpHeaders::set(std::string_view name, std::string_view value) {
    for (auto& field : fields_) {
        if (sameName(field.first, name)) {
            field.second = value;
            return;
        }
    }
    fields_.emplace_back(name, value);
}

const std::string* ZRMHttpHeaders::find(std::string_view name) const {
    for (const auto& field : fields_) {
        if (sameName(field.first, name)) {
            return &field.second;
        }
    }
    return nullptr;
}
