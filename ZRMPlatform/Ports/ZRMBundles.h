// The host application's bundle and the library's resource bundles.
#pragma once

#include <optional>
#include <string>

// Read once; may be called from any thread.
class ZRMMainBundle {
  public:
    virtual ~ZRMMainBundle() = default;
    // The bundle's directory, absolute, without a trailing slash.
    [[nodiscard]] virtual std::string path() const = 0;
    // CFBundleIdentifier; absent when the bundle does not say.
    [[nodiscard]] virtual std::optional<std::string> identifier() const = 0;
    // A text entry of Info.plist, such as CFBundleVersion.
    [[nodiscard]] virtual std::optional<std::string> infoText(const std::string& key) const = 0;
};

class ZRMResourceBundles {
  public:
    virtual ~ZRMResourceBundles() = default;
    // The directory of the library's resource bundle of that name ("….bundle"), or absent.
    [[nodiscard]] virtual std::optional<std::string> pathForBundle(
        const std::string& name) const = 0;
};
