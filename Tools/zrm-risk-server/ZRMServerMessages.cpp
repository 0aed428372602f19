#include "Tools/zrm-risk-server/ZRMServerMessages.h"

#include <algorithm>

namespace {

char lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::optional<std::string_view> ZRMServerRequest::header(std::string_view name) const {
    for (const auto& [key, value] : headers) {
        if (zrm_equalIgnoringCase(key, name)) {
            return value;
        }
    }
    return std::nullopt;
}

std::string_view ZRMServerRequest::path() const {
    return std::string_view(target).substr(0, target.find('?'));
}

bool zrm_equalIgnoringCase(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowered(a) == lowered(b); });
}
