#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakDyldImagesDetector.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "JailbreakDetection/NSSet/NSSet+ZRMJailbreakDetector.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

constexpr std::string_view kPrivate = "/private";

const std::set<std::string>& systemDirectories() {
    static const auto* const directories = new std::set<std::string>{
        "/Developer/Library/",
        "/Developer/usr/lib/",
        "/System/Library/AccessibilityBundles/",
        "/System/Library/Accounts/",
        "/System/Library/Assistant/",
        "/System/Library/Audio/",
        "/System/Library/CardKit/",
        "/System/Library/CardServices/",
        "/System/Library/CoreServices/",
        "/System/Library/Extensions/",
        "/System/Library/Frameworks/",
        "/System/Library/Health/",
        "/System/Library/Messages/",
        "/System/Library/PrivateFrameworks/",
        "/System/Library/SystemConfiguration/",
        "/System/Library/TTSPlugins/",
        "/System/Library/TextInput/",
        "/System/Library/VideoEncoders/",
        "/System/Library/VideoProcessors/",
        "/usr/lib/",
        "/private/preboot/Cryptexes/OS/",
    };
    return *directories;
}

struct TrustedDirectories {
    std::set<std::string> prefixes;
};

char lowered(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + ('a' - 'A'))
                                                : character;
}

// The keywords are ASCII, so the case of other letters cannot matter.
bool containsIgnoringCase(std::string_view text, std::string_view keyword) {
    return std::search(text.begin(), text.end(), keyword.begin(), keyword.end(),
                       [](char left, char right) { return lowered(left) == lowered(right); }) !=
           text.end();
}

}  // namespace

ZRMDeviceJailbreakDyldImagesDetector::ZRMDeviceJailbreakDyldImagesDetector(
    std::shared_ptr<ZRMMainBundle> mainBundle)
    : ZRMDeviceJailbreakDyldImagesDetector(ZRMDyldWatcher::sharedWatcher(), std::move(mainBundle)) {
}

ZRMDeviceJailbreakDyldImagesDetector::ZRMDeviceJailbreakDyldImagesDetector(
    std::shared_ptr<ZRMDyldWatcher> dyldWatcher, std::shared_ptr<ZRMMainBundle> mainBundle)
    : dyldWatcher_(std::move(dyldWatcher)), mainBundle_(std::move(mainBundle)) {}

bool ZRMDeviceJailbreakDyldImagesDetector::isJailbroken() {
    return isDeviceJailbroken();
}

ZRMDeviceJailbreakDetectorType ZRMDeviceJailbreakDyldImagesDetector::detectorType() const {
    return ZRMDeviceJailbreakDetectorDyldImages;
}

bool ZRMDeviceJailbreakDyldImagesDetector::isDeviceJailbroken() {
    // The attached images are looked at whatever the current ones showed.
    const bool currentVerdict = isSomeCurrentImageUntrusted();
    const auto attached = dyldWatcher_->attachedDyldImages();
    const bool attachedVerdict = std::ranges::any_of(
        attached, [this](const auto& image) { return !isTrustedDyldImage(image); });
    return currentVerdict || attachedVerdict;
}

bool ZRMDeviceJailbreakDyldImagesDetector::isSomeCurrentImageUntrusted() const {
    std::unordered_set<ZRMDyldImageDescriptor> seen;
    for (const auto& image : dyldWatcher_->currentDyldImages()) {
        if (!isTrustedDyldImage(image)) {
            return true;
        }
        const auto* const same = zrm_objectAtObject(seen, image);
        if (same != nullptr && same->vmaddr() != image.vmaddr()) {
            return true;
        }
        seen.insert(image);
    }
    return false;
}

bool ZRMDeviceJailbreakDyldImagesDetector::isTrustedDyldImage(
    const ZRMDyldImageDescriptor& image) const {
    const auto& path = image.name();
    const bool hasKeyword = std::ranges::any_of(
        untrustedDyldImageKeywords(),
        [&path](const auto& keyword) { return containsIgnoringCase(path, keyword); });
    return !hasKeyword &&
           std::ranges::any_of(trustedDyldImageDirectories(),
                               [&path](const auto& prefix) { return path.starts_with(prefix); });
}

const std::set<std::string>& ZRMDeviceJailbreakDyldImagesDetector::trustedDyldImageDirectories()
    const {
    return ZRMPlatform::current()
        ->instances
        ->shared<TrustedDirectories>([this] {
            auto made = std::make_shared<TrustedDirectories>();
            made->prefixes = systemDirectories();
            made->prefixes.merge(mainBundleTrustedDirs());
            return made;
        })
        ->prefixes;
}

const std::set<std::string>& ZRMDeviceJailbreakDyldImagesDetector::untrustedDyldImageKeywords() {
    static const auto* const keywords =
        new std::set<std::string>{"MobileSubstrate.dylib", "CydiaSubstrate.framework", "Cydia"};
    return *keywords;
}

std::set<std::string> ZRMDeviceJailbreakDyldImagesDetector::mainBundleTrustedDirs() const {
    const auto path = mainBundle_->path();
    if (path.empty()) {
        return {};
    }
    // Without a trailing slash, so that siblings whose names begin like the bundle's pass as well.
    std::set<std::string> directories{path};
    if (path.starts_with("/var/")) {
        directories.insert(std::string(kPrivate) + path);
    }
    if (path.starts_with("/private/var/")) {
        directories.insert(path.substr(kPrivate.size()));
    }
    return directories;
}
