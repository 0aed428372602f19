#include "ZRMPlatform/Linux/ZRMLinuxMainBundle.h"

#include <cstdlib>
#include <filesystem>

#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

namespace {

std::string executableDirectory() {
    std::error_code failure;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", failure);
    return failure ? "/" : executable.parent_path().string();
}

std::map<std::string, std::string> textsOf(plist_t dictionary) {
    std::map<std::string, std::string> texts;
    if (!PLIST_IS_DICT(dictionary)) {
        return texts;
    }
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(dictionary, &iterator);
    const std::unique_ptr<void, decltype(&std::free)> ownedIterator(iterator, &std::free);
    for (;;) {
        char* key = nullptr;
        plist_t value = nullptr;
        plist_dict_next_item(dictionary, iterator, &key, &value);
        const std::unique_ptr<char, decltype(&std::free)> ownedKey(key, &std::free);
        if (value == nullptr) {
            return texts;
        }
        if (auto text = zrm_propertyListString(value)) {
            texts[key] = std::move(*text);
        }
    }
}

}  // namespace

ZRMLinuxMainBundle::ZRMLinuxMainBundle(const std::string& directory)
    : path_(directory.empty() ? executableDirectory() : zrm_absolutePath(directory)) {
    if (const auto bytes = ZRMLinuxFileManager().readFile(path_ + "/Info.plist")) {
        const auto list = zrm_readPropertyList(bytes.value());
        texts_ = textsOf(list.get());
    }
}

std::optional<std::string> ZRMLinuxMainBundle::identifier() const {
    return infoText("CFBundleIdentifier");
}

std::optional<std::string> ZRMLinuxMainBundle::infoText(const std::string& key) const {
    const auto found = texts_.find(key);
    return found == texts_.end() ? std::nullopt : std::optional(found->second);
}
