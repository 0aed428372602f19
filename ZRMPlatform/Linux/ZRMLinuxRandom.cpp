#include "ZRMPlatform/Linux/ZRMLinuxRandom.h"

#include <algorithm>
#include <cerrno>

#include <openssl/rand.h>
#include <sys/random.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

void ZRMLinuxRandom::fill(std::span<std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto count = getrandom(bytes.data(), bytes.size(), 0);
        if (count > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        } else if (count < 0 && errno != EINTR) {
            break;  // a sandbox may forbid the call
        }
    }
    if (!bytes.empty()) {
        zrm_prepareOpenSSL();
        constexpr std::size_t kChunk = 1U << 20U;
        while (!bytes.empty()) {
            const auto part = std::min(bytes.size(), kChunk);
            RAND_bytes(bytes.data(), static_cast<int>(part));
            bytes = bytes.subspan(part);
        }
    }
}
