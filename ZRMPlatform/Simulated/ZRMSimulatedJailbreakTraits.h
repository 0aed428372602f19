// Traits of a jailbroken device, as the test sets them.
#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMJailbreakTraits.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// Records what was asked and whether it was on the main queue.
class ZRMSimulatedUrlOpener final : public ZRMUrlOpener {
  public:
    struct Question {
        std::string url;
        bool onMainQueue = false;
    };

    explicit ZRMSimulatedUrlOpener(std::weak_ptr<ZRMQueue> mainQueue);
    [[nodiscard]] bool canOpenUrl(const std::string& url) const override;

    std::set<std::string> openableUrls;
    [[nodiscard]] const std::vector<Question>& questions() const { return questions_; }

  private:
    std::weak_ptr<ZRMQueue> mainQueue_;
    mutable std::vector<Question> questions_;
};

class ZRMSimulatedCommandProcessor final : public ZRMCommandProcessor {
  public:
    int available = 0;
    mutable int questions = 0;
    [[nodiscard]] int availability() const override;
};

class ZRMSimulatedFileAccess final : public ZRMFileAccess {
  public:
    std::set<std::string> readablePaths;
    std::set<std::string> writablePaths;
    mutable std::vector<std::string> questions;  // paths, in order
    [[nodiscard]] bool isReadable(const std::string& path) const override;
    [[nodiscard]] bool isWritable(const std::string& path) const override;
};
