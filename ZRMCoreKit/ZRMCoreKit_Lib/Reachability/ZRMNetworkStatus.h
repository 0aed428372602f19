// By which kind of path, if any, a peer can be reached.
#pragma once

#include <cstdint>

enum class ZRMNetworkStatus : int {
    NotReachable = 0,
    ReachableViaWiFi = 1,  // or any path that is not cellular
    ReachableViaWWAN = 2,
};
