#include "ZRMSystemWatcher/ZRMSystemWatcher_Tests/ZRMCodeSignatureFixture.h"

#include <array>
#include <cstdio>
#include <span>

#include <openssl/sha.h>

namespace {

std::string text(std::span<const unsigned char> digest) {
    std::string written;
    for (const auto byte : digest) {
        std::array<char, 3> two{};
        std::snprintf(two.data(), two.size(), "%02x", byte);
        written += two.data();
    }
    return written;
}

}  // namespace

std::string zrm_sha1Text(const ZRMData& bytes) {
    std::array<unsigned char, SHA_DIGEST_LENGTH> digest{};
    SHA1(bytes.data(), bytes.size(), digest.data());
    return text(digest);
}

std::string zrm_sha256Text(const ZRMData& bytes) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(bytes.data(), bytes.size(), digest.data());
    return text(digest);
}

std::vector<std::string> zrm_sha256Texts(const std::vector<ZRMData>& pieces) {
    std::vector<std::string> texts;
    for (const auto& piece : pieces) {
        texts.push_back(zrm_sha256Text(piece));
    }
    return texts;
}
