// Finds a path from a leaf to an anchor.
#pragma once

#include <string>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxX509.h"

struct ZRMLinuxTrustPath {
    // From the leaf to the anchor, both included; empty where there is no good path.
    std::vector<ZRMLinuxX509> certificates;
    std::string reason;  // why there is none
};

// Prefers a path to a self-signed anchor over a shorter one, so that as many certificates as
// possible stand below the anchor and are asked about. Every issuer has to be an authority by its
// own extensions, keys and signatures have to be worth 112 bits, the anchor's own signature apart,
// and a leaf that says what its key is for has to allow signing data.
[[nodiscard]] ZRMLinuxTrustPath zrm_findTrustPath(const ZRMLinuxX509& leaf,
                                                  const std::vector<ZRMLinuxX509>& others,
                                                  const std::vector<ZRMLinuxX509>& anchors,
                                                  ZRMDate date);
