#include "ZRMPlatform/Linux/ZRMLinuxResourceBundles.h"

#include <filesystem>

#include <dlfcn.h>
#include <link.h>

#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"

namespace {

// Somewhere in the image that this code was linked into.
const char kAnchor = 0;

std::string directoryOfImage() {
    Dl_info info{};
    link_map* image = nullptr;
    std::error_code failure;
    // The executable's own name may be whatever its starter said; the kernel knows its path.
    auto file = std::filesystem::read_symlink("/proc/self/exe", failure);
    if (::dladdr1(&kAnchor, &info, reinterpret_cast<void**>(&image), RTLD_DL_LINKMAP) != 0 &&
        image != nullptr && image->l_name != nullptr && *image->l_name != '\0') {
        file = zrm_absolutePath(image->l_name);
    }
    return file.parent_path().string();
}

}  // namespace

ZRMLinuxResourceBundles::ZRMLinuxResourceBundles(const std::string& directory) {
    if (!directory.empty()) {
        directories_ = {zrm_absolutePath(directory)};
        return;
    }
    const auto own = directoryOfImage();
    directories_ = {own, zrm_absolutePath(own + "/../share/ZRMMobileKit")};
}

std::optional<std::string> ZRMLinuxResourceBundles::pathForBundle(const std::string& name) const {
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) {
        return std::nullopt;
    }
    for (const auto& directory : directories_) {
        auto path = directory;
        path.append("/").append(name);
        if (ZRMLinuxFileManager().directoryExists(path)) {
            return path;
        }
    }
    return std::nullopt;
}
