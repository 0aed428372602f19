// Small ports that answer what a test sets.
#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMDevice.h"

class ZRMStubEnvironment : public ZRMProcessEnvironment {
  public:
    explicit ZRMStubEnvironment(std::map<std::string, std::string> variables)
        : variables_(std::move(variables)) {}

    [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override {
        const auto found = variables_.find(name);
        return found == variables_.end() ? std::nullopt : std::optional(found->second);
    }

  private:
    std::map<std::string, std::string> variables_;
};

class ZRMRecordingConsole : public ZRMConsoleLog {
  public:
    void write(std::string_view text) override {
        const std::lock_guard lock(mutex_);
        text_ += text;
    }
    [[nodiscard]] std::string text() const {
        const std::lock_guard lock(mutex_);
        return text_;
    }

  private:
    mutable std::mutex mutex_;
    std::string text_;
};
