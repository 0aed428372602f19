#include "Benchmarks/ZRMRiskServerRun.h"

namespace {

std::vector<std::string> wordsFor(const std::vector<std::string>& options) {
    std::vector<std::string> words{ZRM_RISK_SERVER, "--listen", "127.0.0.1:0", "--quiet"};
    words.insert(words.end(), options.begin(), options.end());
    return words;
}

}  // namespace

ZRMRiskServerRun::ZRMRiskServerRun(const std::vector<std::string>& options,
                                   const std::string& logPath)
    : process_(wordsFor(options), logPath) {
    const auto line = process_.readLine();  // "listening on http://127.0.0.1:43217"
    port_ = static_cast<std::uint16_t>(std::stoul(line.substr(line.rfind(':') + 1)));
}
