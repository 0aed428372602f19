#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>
#include <thread>

#include "Tools/zrm-risk-server/ZRMHttpServer.h"
#include "Tools/zrm-risk-server/ZRMPki.h"
#include "Tools/zrm-risk-server/ZRMRiskServerOptions.h"
#include "Tools/zrm-risk-server/ZRMRiskService.h"

namespace {

void serve(const ZRMRiskServerOptions& options) {
    ZRMHttpServerOptions serverOptions;
    serverOptions.host = options.listen.host;
    serverOptions.port = options.listen.port;
    serverOptions.threads = std::max(2U, std::thread::hardware_concurrency());
    if (!options.pkiDirectory.empty()) {
        const auto pki = ZRMPki::openOrMake(options.pkiDirectory);
        if (!options.plain) {
            serverOptions.certificateFile = pki.tlsCertificateFile();
            serverOptions.keyFile = pki.tlsKeyFile();
        }
    }
    auto events =
        options.eventsFile.empty() ? nullptr : std::make_unique<ZRMEventsFile>(options.eventsFile);
    ZRMHttpServer server(serverOptions,
                         std::make_shared<ZRMRiskService>(std::move(events), options.faults,
                                                          options.quiet, std::cerr));
    server.stopOnSignals();
    const bool isIpv6 = options.listen.host.find(':') != std::string::npos;
    std::cout << "listening on " << (options.plain ? "http://" : "https://")
              << (isIpv6 ? "[" + options.listen.host + "]" : options.listen.host) << ":"
              << server.port() << std::endl;
    server.run();
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    const auto options = zrm_readRiskServerOptions(argc, argv, std::cout, std::cerr);
    if (const auto* status = std::get_if<int>(&options)) {
        return *status;
    }
    try {
        serve(std::get<ZRMRiskServerOptions>(options));
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "zrm-risk-server: " << failure.what() << std::endl;
        return 1;
    }
}
