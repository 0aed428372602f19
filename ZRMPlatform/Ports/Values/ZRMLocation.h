// A position of the device on the earth.
#pragma once

struct ZRMLocation {
    double latitude = 0;            // degrees, positive to the north
    double longitude = 0;           // degrees, positive to the east
    double horizontalAccuracy = 0;  // radius in metres; smaller is better

    friend bool operator==(const ZRMLocation&, const ZRMLocation&) = default;
};
