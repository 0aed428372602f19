#include "ZRMPlatform/Simulated/ZRMSimulatedJailbreakTraits.h"

#include <utility>

ZRMSimulatedUrlOpener::ZRMSimulatedUrlOpener(std::weak_ptr<ZRMQueue> mainQueue)
    : mainQueue_(std::move(mainQueue)) {}

bool ZRMSimulatedUrlOpener::canOpenUrl(const std::string& url) const {
    const auto mainQueue = mainQueue_.lock();
    questions_.push_back({url, mainQueue && mainQueue->isCurrent()});
    return openableUrls.contains(url);
}

int ZRMSimulatedCommandProcessor::availability() const {
    ++questions;
    return available;
}

bool ZRMSimulatedFileAccess::isReadable(const std::string& path) const {
    questions.push_back(path);
    return readablePaths.contains(path);
}

bool ZRMSimulatedFileAccess::isWritable(const std::string& path) const {
    questions.push_back(path);
    return writablePaths.contains(path);
}
