#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintScreen.h"

#include <array>
#include <cmath>

namespace {

constexpr ZRMScreen kNoScreen{.scale = 0, .nativeScale = 0};

double finiteOrZero(double number) {
    return std::isfinite(number) ? number : 0;
}

// The screen's bounds in units of which a point has so many.
ZRMDictionary sizeOf(const ZRMScreen& screen, double unitsInAPoint) {
    const ZRMFingerprintSize size{finiteOrZero(screen.height * unitsInAPoint),
                                  finiteOrZero(screen.width * unitsInAPoint)};
    return zrm_eventBody(size, ZRMFingerprintSize::fields());
}

}  // namespace

std::span<const ZRMEventField<ZRMFingerprintSize>> ZRMFingerprintSize::fields() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMFingerprintSize::height>("height", "of the main screen"),
        zrm_eventField<&ZRMFingerprintSize::width>("width", "of the main screen"),
    };
    return kFields;
}

std::span<const ZRMEventField<ZRMFingerprintScreen>> ZRMFingerprintScreen::fields() {
    using Screen = ZRMFingerprintScreen;
    static constexpr std::array kFields{
        zrm_eventField<&Screen::amountOfScreens>("amountOfScreens", "how many are connected"),
        zrm_eventField<&Screen::availableModes>("availableModes", "always empty"),
        zrm_eventField<&Screen::isMirrored>("isScreenMirrored", "another screen mirrors it"),
        zrm_eventField<&Screen::nativeScale>("nativeScaleFactor", "pixels of the panel in a point"),
        zrm_eventField<&Screen::scale>("scaleFactor", "pixels in a point"),
        zrm_eventField<&Screen::sizeInPoints>("sizeInPoints", "the bounds in points"),
        zrm_eventField<&Screen::sizeInPixels>("sizeInPixels", "the bounds multiplied by the scale"),
    };
    return kFields;
}

ZRMFingerprintScreen ZRMFingerprintScreen::read(const ZRMScreens& screens) {
    const auto all = screens.screens();
    const auto& main = all.empty() ? kNoScreen : all.front();
    return {.amountOfScreens = all.size(),
            .availableModes = {},
            .isMirrored = main.hasMirroredScreen,
            .nativeScale = finiteOrZero(main.nativeScale),
            .scale = finiteOrZero(main.scale),
            .sizeInPoints = sizeOf(main, 1),
            .sizeInPixels = sizeOf(main, main.scale)};
}
