// The directories of the library's resource bundles.
#pragma once

#include <vector>

#include "ZRMPlatform/Ports/ZRMBundles.h"

class ZRMLinuxResourceBundles : public ZRMResourceBundles {
  public:
    // Looks in `directory` alone; or, when that is empty, beside the library or executable that
    // holds this code and then in "../share/ZRMMobileKit" from there.
    explicit ZRMLinuxResourceBundles(const std::string& directory);

    // A name that is no single path component has no bundle.
    [[nodiscard]] std::optional<std::string> pathForBundle(const std::string& name) const override;

  private:
    std::vector<std::string> directories_;
};
