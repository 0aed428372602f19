// One display, as the system shows it to applications.
#pragma once

#include <optional>

struct ZRMScreen {
    // Its contents are recorded, mirrored or sent elsewhere; absent where the system cannot say.
    std::optional<bool> isCaptured;
    bool hasMirroredScreen = false;
    double width = 0;   // in points
    double height = 0;  // in points
    double scale = 1;   // pixels in a point
    double nativeScale = 1;

    friend bool operator==(const ZRMScreen&, const ZRMScreen&) = default;
};
