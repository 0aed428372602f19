#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldWatcher.h"

#include <utility>

std::shared_ptr<ZRMDyldWatcher> ZRMDyldWatcher::sharedWatcher() {
    // Never destroyed: the loader may call back while the process exits.
    static auto* const watcher =
        new std::shared_ptr<ZRMDyldWatcher>(std::make_shared<ZRMDyldWatcher>(zrm_processLoader()));
    return *watcher;
}

std::shared_ptr<ZRMDyldWatcher> ZRMDyldWatcher::watcherForPlatform(const ZRMPlatform& platform) {
    if (platform.loader == zrm_processLoader()) {
        return sharedWatcher();
    }
    return platform.instances->shared<ZRMDyldWatcher>([&platform] {
        auto watcher = std::make_shared<ZRMDyldWatcher>(platform.loader);
        watcher->registerAddImageCallback();
        return watcher;
    });
}

ZRMDyldWatcher::ZRMDyldWatcher(std::shared_ptr<ZRMLoader> loader) : loader_(std::move(loader)) {}

void ZRMDyldWatcher::registerAddImageCallback() {
    // The loader keeps the callback for good, so it must not keep the loader in turn.
    loader_->registerAddImageCallback(
        [weakWatcher = weak_from_this(), weakLoader = std::weak_ptr(loader_)](
            std::uint64_t headerAddress, std::int64_t slide) {
            const auto watcher = weakWatcher.lock();
            const auto loader = weakLoader.lock();
            if (watcher && loader) {
                ZRMAddDyldImageCallback(*watcher, *loader, headerAddress, slide);
            }
        });
}

std::vector<ZRMDyldImageDescriptor> ZRMDyldWatcher::attachedDyldImages() {
    loader_->noticeAddedImages();
    const ZRMLockGuard lock(mutex_);
    return attachedImages_;
}

std::vector<ZRMDyldImageDescriptor> ZRMDyldWatcher::currentDyldImages() const {
    std::vector<ZRMDyldImageDescriptor> images;
    const auto count = loader_->imageCount();
    for (std::uint32_t index = 0; index < count; ++index) {
        if (auto image = loader_->imageAtIndex(index)) {
            images.emplace_back(std::move(image->name), image->headerAddress);
        }
    }
    return images;
}

void ZRMDyldWatcher::addAttachedDyldImage(ZRMDyldImageDescriptor image) {
    const ZRMLockGuard lock(mutex_);
    attachedImages_.push_back(std::move(image));
}

void ZRMAddDyldImageCallback(ZRMDyldWatcher& watcher, ZRMLoader& loader,
                             std::uint64_t headerAddress, std::int64_t /*slide*/) {
    if (auto file = loader.fileForAddress(headerAddress)) {
        watcher.addAttachedDyldImage({*std::move(file), headerAddress});
    }
}

// The library's only load-time initialiser: what is recorded must begin with the process. It stands
// beside the watcher so that whoever links the one links the other.
__attribute__((constructor)) static void ZRMDyldWatcherAddImageCallbackConstruct() {
    ZRMDyldWatcher::sharedWatcher()->registerAddImageCallback();
}
