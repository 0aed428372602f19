// What a responder or a list says of one certificate.
#pragma once

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

enum class ZRMLinuxRevocationStatus {
    NoAnswer,  // nothing came, or what came cannot be relied on
    Good,
    Revoked,
};

struct ZRMLinuxRevocationAnswer {
    ZRMLinuxRevocationStatus status = ZRMLinuxRevocationStatus::NoAnswer;
    // How long it holds. An answer that names no end holds for the moment alone.
    ZRMDate from;
    ZRMDate until;
};

// How far the clocks of device and responder may differ.
inline constexpr double kZRMRevocationClockSkewSeconds = 300;
