#include "ZRMPlatform/Linux/ZRMLinuxRevocationCache.h"

#include <algorithm>

#include <openssl/evp.h>
#include <openssl/x509.h>

std::optional<ZRMLinuxRevocationCache::Fingerprint> ZRMLinuxRevocationCache::fingerprintOf(
    const X509* certificate) {
    Fingerprint fingerprint{};
    if (X509_digest(certificate, EVP_sha256(), fingerprint.data(), nullptr) != 1) {
        return std::nullopt;
    }
    return fingerprint;
}

ZRMLinuxRevocationAnswer ZRMLinuxRevocationCache::find(const X509* certificate, ZRMDate now) const {
    const auto fingerprint = fingerprintOf(certificate);
    const ZRMLockGuard lock(mutex_);
    const auto found = fingerprint ? answers_.find(*fingerprint) : answers_.end();
    if (found == answers_.end() || now < found->second.from || found->second.until < now) {
        return {};
    }
    return found->second;
}

void ZRMLinuxRevocationCache::keep(const X509* certificate,
                                   const ZRMLinuxRevocationAnswer& answer) {
    const auto fingerprint = fingerprintOf(certificate);
    if (answer.status == ZRMLinuxRevocationStatus::NoAnswer || !fingerprint) {
        return;
    }
    const ZRMLockGuard lock(mutex_);
    answers_[*fingerprint] = answer;
    if (answers_.size() > kMaximumEntries) {
        answers_.erase(std::ranges::min_element(
            answers_, {}, [](const auto& entry) { return entry.second.until; }));
    }
}
