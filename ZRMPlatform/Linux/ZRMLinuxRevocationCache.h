// Answers about certificates, kept as long as they hold.
#pragma once

#include <map>
#include <mutex>
#include <optional>

#include "ZRMPlatform/Linux/ZRMLinuxRevocationAnswer.h"
#include "ZRMPlatform/Linux/ZRMLinuxX509.h"

// In memory only, the last to run out first of all when it is full. May be used from any thread.
class ZRMLinuxRevocationCache {
  public:
    static constexpr std::size_t kMaximumEntries = 256;

    // An answer about this very certificate that holds at `now`, or one of status NoAnswer.
    [[nodiscard]] ZRMLinuxRevocationAnswer find(const X509* certificate, ZRMDate now) const;
    // Answers of status NoAnswer are not kept.
    void keep(const X509* certificate, const ZRMLinuxRevocationAnswer& answer);

  private:
    mutable std::mutex mutex_;
    std::map<ZRMData, ZRMLinuxRevocationAnswer> answers_;  // by the certificate's SHA-256
};
