// The module's small persistent values.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ZRMPlatform/Ports/ZRMUserDefaults.h"

inline constexpr const char* kZRMMobileKitDefaultsSuite = "com.velorin.zrm.mobilekit.userdefaults";

// When the settings document was last downloaded.
class ZRMSettingsUpdateTimestampProvider {
  public:
    virtual ~ZRMSettingsUpdateTimestampProvider() = default;
    // Seconds since 1970; 0 until one was stored.
    [[nodiscard]] virtual double settingsUpdateTimestamp() const = 0;
    virtual void setSettingsUpdateTimestamp(double secondsSince1970) = 0;
};

// When the device's location was last detected.
class ZRMLocationDetectTimestampProvider {
  public:
    virtual ~ZRMLocationDetectTimestampProvider() = default;
    // Seconds since 1970; 0 until one was stored.
    [[nodiscard]] virtual double locationDetectTimestamp() const = 0;
    virtual void setLocationDetectTimestamp(double secondsSince1970) = 0;
};

// Where the execution-session identifier outlives the process.
class ZRMExecSessionIdStorage {
  public:
    virtual ~ZRMExecSessionIdStorage() = default;
    // Absent until one was stored.
    [[nodiscard]] virtual std::optional<std::string> execSessionId() const = 0;
    virtual void setExecSessionId(const std::string& identifier) = 0;
    // Seconds since 1970 after which the identifier is replaced; 0 until one was stored.
    [[nodiscard]] virtual double execSessionIdRefreshTimestamp() const = 0;
    virtual void setExecSessionIdRefreshTimestamp(double secondsSince1970) = 0;
};

// A handle on the module's suite. May be used from any thread.
class ZRMMobileKitDefaults final : public ZRMSettingsUpdateTimestampProvider,
                                   public ZRMLocationDetectTimestampProvider,
                                   public ZRMExecSessionIdStorage {
  public:
    explicit ZRMMobileKitDefaults(std::unique_ptr<ZRMUserDefaultsSuite> suite);

    [[nodiscard]] double settingsUpdateTimestamp() const override;
    void setSettingsUpdateTimestamp(double secondsSince1970) override;
    [[nodiscard]] double locationDetectTimestamp() const override;
    void setLocationDetectTimestamp(double secondsSince1970) override;
    [[nodiscard]] std::optional<std::string> execSessionId() const override;
    void setExecSessionId(const std::string& identifier) override;
    [[nodiscard]] double execSessionIdRefreshTimestamp() const override;
    void setExecSessionIdRefreshTimestamp(double secondsSince1970) override;

  private:
    const std::unique_ptr<ZRMUserDefaultsSuite> suite_;
};

// A new handle on each call.
std::shared_ptr<ZRMMobileKitDefaults> zrm_mobileKitDefaults(ZRMUserDefaults& userDefaults);
