// User defaults of a simulated device.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <variant>

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMUserDefaults.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// What is stored, by suite and key; survives the process.
class ZRMSimulatedDefaultsStore {
  public:
    using Value = std::variant<double, std::string>;
    using Suite = std::map<std::string, Value>;

    [[nodiscard]] std::map<std::string, Suite>& suites() { return suites_; }
    // While set, writes stay in the memory of the process that makes them.
    void setWritesFail(bool fail) { writesFail_ = fail; }
    [[nodiscard]] bool writesFail() const { return writesFail_; }

  private:
    std::map<std::string, Suite> suites_;
    bool writesFail_ = false;
};

// The defaults port of one process.
class ZRMSimulatedUserDefaults final : public ZRMUserDefaults {
  public:
    ZRMSimulatedUserDefaults(std::shared_ptr<ZRMSimulatedDefaultsStore> store,
                             std::shared_ptr<ZRMSimulatedProcess> process,
                             std::shared_ptr<ZRMConsoleLog> console);
    std::unique_ptr<ZRMUserDefaultsSuite> openSuite(const std::string& name) override;

    struct State;

  private:
    std::shared_ptr<State> state_;
};
