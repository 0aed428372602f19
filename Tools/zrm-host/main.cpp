#include <exception>
#include <filesystem>
#include <iostream>

#include "Tools/zrm-host/ZRMHostOptions.h"
#include "Tools/zrm-host/ZRMHostRunner.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

void run(const ZRMHostOptions& options) {
    if (!options.platform.homeDirectory.empty()) {
        std::filesystem::create_directories(options.platform.homeDirectory);
    }
    ZRMPlatform::install(zrm_makeLinuxPlatform(options.platform));
    auto configuration = ZRMMobileServiceConfiguration::configuration();
    configuration.setStatisticsUrl(options.statisticsUrl);
    configuration.setLogLevel(options.logLevel);
    const auto service = ZRMMobileService::createServiceWithConfiguration(configuration);
    ZRMHostContext context{*service, std::cerr};
    zrm_runHost(context, std::cin, std::cout, options.interactive);
}

}  // namespace

int main(int argc, char** argv) {
    const auto options = zrm_readHostOptions(argc, argv, std::cout, std::cerr);
    if (const auto* status = std::get_if<int>(&options)) {
        return *status;
    }
    try {
        run(std::get<ZRMHostOptions>(options));
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "zrm-host: " << failure.what() << std::endl;
        return 1;
    }
}
