#include "ZRMPlatform/Simulated/ZRMSimulatedConsole.h"

#include <sstream>
#include <utility>

std::vector<std::string> ZRMSimulatedConsole::lines() const {
    std::vector<std::string> lines;
    std::istringstream input(text_);
    for (std::string line; std::getline(input, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool ZRMSimulatedConsole::contains(std::string_view part) const {
    return text_.find(part) != std::string::npos;
}

ZRMSimulatedConsoleLog::ZRMSimulatedConsoleLog(std::shared_ptr<ZRMSimulatedConsole> console,
                                               std::shared_ptr<ZRMSimulatedProcess> process)
    : console_(std::move(console)), process_(std::move(process)) {}

void ZRMSimulatedConsoleLog::write(std::string_view text) {
    if (process_->isAlive()) {
        console_->append(text);
    }
}
