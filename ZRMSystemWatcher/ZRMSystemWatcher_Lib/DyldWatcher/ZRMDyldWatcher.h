// Records every image that the dynamic loader maps, from the process's start on, and lists those
// loaded now.
#pragma once

#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/ZRMLoader.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldImageDescriptor.h"

// May be used from any thread.
class ZRMDyldWatcher : public std::enable_shared_from_this<ZRMDyldWatcher> {
  public:
    // The process's one watcher, which a load-time initialiser registers with the loader.
    static std::shared_ptr<ZRMDyldWatcher> sharedWatcher();

    // The shared watcher where the platform's loader is the process's own; otherwise the one that
    // watches that loader from the first call on.
    static std::shared_ptr<ZRMDyldWatcher> watcherForPlatform(const ZRMPlatform& platform);

    // Records nothing until it is registered or images are added by hand.
    explicit ZRMDyldWatcher(std::shared_ptr<ZRMLoader> loader);

    // Asks the loader to tell of every image; the watcher is held weakly.
    void registerAddImageCallback();

    // Every image ever recorded, in the order of loading. One that was unloaded stays.
    [[nodiscard]] std::vector<ZRMDyldImageDescriptor> attachedDyldImages();
    // Asked of the loader by index, without a lock: an image that comes or goes meanwhile may be
    // missed.
    [[nodiscard]] std::vector<ZRMDyldImageDescriptor> currentDyldImages() const;

    void addAttachedDyldImage(ZRMDyldImageDescriptor image);

  private:
    std::shared_ptr<ZRMLoader> loader_;
    ZRMMutex mutex_;
    std::vector<ZRMDyldImageDescriptor> attachedImages_ ZRM_GUARDED_BY(mutex_);
};

// The loader's callback: records the image's file on the watcher. An address that lies in no image
// records nothing; the slide does not matter.
void ZRMAddDyldImageCallback(ZRMDyldWatcher& watcher, ZRMLoader& loader,
                             std::uint64_t headerAddress, std::int64_t slide);
