// A run of zrm-risk-server.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "Benchmarks/ZRMChildProcess.h"

// Listens on a port of the system's choice from construction on; ends with the object.
class ZRMRiskServerRun {
  public:
    ZRMRiskServerRun(const std::vector<std::string>& options, const std::string& logPath);
    ~ZRMRiskServerRun() { process_.terminate(); }
    ZRMRiskServerRun(const ZRMRiskServerRun&) = delete;
    ZRMRiskServerRun& operator=(const ZRMRiskServerRun&) = delete;

    [[nodiscard]] std::uint16_t port() const { return port_; }

  private:
    ZRMChildProcess process_;
    std::uint16_t port_ = 0;
};
