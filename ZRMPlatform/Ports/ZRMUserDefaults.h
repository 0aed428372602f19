// Small persistent values by key, grouped in named suites.
#pragma once

#include <memory>
#include <optional>
#include <string>

// Values are typed on reading: a value of another type reads as absent. A write is seen by every
// later read of any handle on the suite and does not wait for the disk; it survives the exit of the
// process, and a moment later its end by a signal. May be called from any thread. A write that
// fails keeps the value in memory for this process and says so on the console.
class ZRMUserDefaultsSuite {
  public:
    virtual ~ZRMUserDefaultsSuite() = default;
    [[nodiscard]] virtual std::optional<double> doubleForKey(const std::string& key) const = 0;
    [[nodiscard]] virtual std::optional<std::string> stringForKey(const std::string& key) const = 0;
    virtual void setDouble(const std::string& key, double value) = 0;
    virtual void setString(const std::string& key, const std::string& value) = 0;
};

class ZRMUserDefaults {
  public:
    virtual ~ZRMUserDefaults() = default;
    // A new handle on the suite; never absent.
    virtual std::unique_ptr<ZRMUserDefaultsSuite> openSuite(const std::string& name) = 0;
};
