// Records what the library logs through the shared logger collection while it is in scope.
#pragma once

#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"

// Works on the platform that is installed when it is made. May be used from any thread.
class ZRMRecordedLog {
  public:
    explicit ZRMRecordedLog(ZRMLogLevel level = kZRMLogLevelVerbose)
        : recorder_(std::make_shared<Recorder>(level)) {
        ZRMLoggerCollection::sharedInstance()->addLogger(recorder_);
    }
    // A collection never loses a logger; this one goes deaf.
    ~ZRMRecordedLog() { recorder_->setLogLevel(std::numeric_limits<ZRMLogLevel>::max()); }
    ZRMRecordedLog(const ZRMRecordedLog&) = delete;
    ZRMRecordedLog& operator=(const ZRMRecordedLog&) = delete;

    // The texts logged at that level, oldest first, without the part that names the source.
    [[nodiscard]] std::vector<std::string> errors() const { return texts(kZRMLogLevelError); }
    [[nodiscard]] std::vector<std::string> verboses() const { return texts(kZRMLogLevelVerbose); }

    // Whole messages with their levels, oldest first.
    [[nodiscard]] std::vector<std::pair<std::string, ZRMLogLevel>> messages() const {
        return recorder_->messages();
    }

  private:
    class Recorder final : public ZRMLogger {
      public:
        explicit Recorder(ZRMLogLevel level) : level_(level) {}

        void logMessage(const std::string& message, ZRMLogLevel level) override {
            const std::lock_guard lock(mutex_);
            if (level >= level_) {
                messages_.emplace_back(message, level);
            }
        }
        [[nodiscard]] ZRMLogLevel logLevel() const override {
            const std::lock_guard lock(mutex_);
            return level_;
        }
        void setLogLevel(ZRMLogLevel level) override {
            const std::lock_guard lock(mutex_);
            level_ = level;
        }
        [[nodiscard]] std::vector<std::pair<std::string, ZRMLogLevel>> messages() const {
            const std::lock_guard lock(mutex_);
            return messages_;
        }

      private:
        mutable std::mutex mutex_;
        ZRMLogLevel level_;
        std::vector<std::pair<std::string, ZRMLogLevel>> messages_;
    };

    [[nodiscard]] std::vector<std::string> texts(ZRMLogLevel level) const {
        std::vector<std::string> found;
        for (const auto& [message, itsLevel] : recorder_->messages()) {
            if (itsLevel == level) {
                const auto end = message.find(")> ");
                found.push_back(end == std::string::npos ? message : message.substr(end + 3));
            }
        }
        return found;
    }

    std::shared_ptr<Recorder> recorder_;
};
