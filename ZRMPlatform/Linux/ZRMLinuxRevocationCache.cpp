#include "ZRMPlatform/Linux/ZRMLinuxRevocationCache.h"

#include <algorithm>

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace {

// Empty when the digest is not to be had.
ZRMData fingerprintOf(const X509* certificate) {
    ZRMData digest(EVP_MAX_MD_SIZE);
    unsigned length = 0;
    if (X509_digest(certificate, EVP_sha256(), digest.data(), &length) != 1) {
        return {};
    }
    digest.resize(length);
    return digest;
}

}  // namespace

ZRMLinuxRevocationAnswer ZRMLinuxRevocationCache::find(const X509* certificate, ZRMDate now) const {
    const auto fingerprint = fingerprintOf(certificate);
    const std::lock_guard lock(mutex_);
    const auto found = answers_.find(fingerprint);
    if (found == answers_.end() || now < found->second.from || found->second.until < now) {
        return {};
    }
    return found->second;
}

void ZRMLinuxRevocationCache::keep(const X509* certificate,
                                   const ZRMLinuxRevocationAnswer& answer) {
    auto fingerprint = fingerprintOf(certificate);
    if (answer.status == ZRMLinuxRevocationStatus::NoAnswer || fingerprint.empty()) {
        return;
    }
    const std::lock_guard lock(mutex_);
    answers_[std::move(fingerprint)] = answer;
    if (answers_.size() > kMaximumEntries) {
        answers_.erase(std::ranges::min_element(
            answers_, {}, [](const auto& entry) { return entry.second.until; }));
    }
}
