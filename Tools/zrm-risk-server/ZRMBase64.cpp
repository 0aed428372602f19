#include "Tools/zrm-risk-server/ZRMBase64.h"

#include <algorithm>

#include <openssl/evp.h>

std::string zrm_base64Text(std::string_view bytes) {
    // The encoder ends its text with a zero byte.
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
                    reinterpret_cast<const unsigned char*>(bytes.data()),
                    static_cast<int>(bytes.size()));
    text.pop_back();
    return text;
}

std::string zrm_base64UrlText(std::string_view bytes) {
    auto text = zrm_base64Text(bytes);
    std::ranges::replace(text, '+', '-');
    std::ranges::replace(text, '/', '_');
    while (text.ends_with('=')) {
        text.pop_back();
    }
    return text;
}
