// What the application wrote to its console.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// Kept over restarts of the process.
class ZRMSimulatedConsole {
  public:
    void append(std::string_view text) { text_ += text; }

    // Everything, as it was written.
    [[nodiscard]] const std::string& text() const { return text_; }
    // The same cut at the line feeds; a last line without one counts.
    [[nodiscard]] std::vector<std::string> lines() const;
    // Whether some line holds the text.
    [[nodiscard]] bool contains(std::string_view part) const;
    void clear() { text_.clear(); }

  private:
    std::string text_;
};

// The console port of one process.
class ZRMSimulatedConsoleLog final : public ZRMConsoleLog {
  public:
    ZRMSimulatedConsoleLog(std::shared_ptr<ZRMSimulatedConsole> console,
                           std::shared_ptr<ZRMSimulatedProcess> process);
    void write(std::string_view text) override;

  private:
    std::shared_ptr<ZRMSimulatedConsole> console_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
};
