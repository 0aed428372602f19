#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>
#include <optional>
#include <thread>

#include "Tools/zrm-risk-server/ZRMDocuments.h"
#include "Tools/zrm-risk-server/ZRMHttpServer.h"
#include "Tools/zrm-risk-server/ZRMPki.h"
#include "Tools/zrm-risk-server/ZRMRiskServerOptions.h"
#include "Tools/zrm-risk-server/ZRMRiskService.h"

namespace {

// The address that certificates name for clients on this machine.
std::string baseUrl(const ZRMRiskServerOptions& options, std::uint16_t port) {
    return std::string(options.plain ? "http" : "https") + "://localhost:" + std::to_string(port);
}

std::unique_ptr<const ZRMDocuments> makeDocuments(const ZRMRiskServerOptions& options,
                                                  const ZRMPki& pki, std::uint16_t port) {
    const auto url = baseUrl(options, port);
    const auto chain = std::make_shared<const ZRMSigningChain>(pki, url, options.namesChain,
                                                               options.misbehaviours);
    ZRMDocumentSigner signer(chain, options.namesChain ? url + ZRMSigningChain::kLeafPath : "",
                             options.misbehaviours);
    return std::make_unique<const ZRMDocuments>(chain, std::move(signer), options.settingsFile,
                                                options.tagInterval, options.misbehaviours);
}

void serve(const ZRMRiskServerOptions& options) {
    ZRMHttpServerOptions serverOptions;
    serverOptions.host = options.listen.host;
    serverOptions.port = options.listen.port;
    serverOptions.threads = std::max(2U, std::thread::hardware_concurrency());
    std::optional<ZRMPki> pki;
    if (!options.pkiDirectory.empty()) {
        pki = ZRMPki::openOrMake(options.pkiDirectory);
        if (!options.plain) {
            serverOptions.certificateFile = pki->tlsCertificateFile();
            serverOptions.keyFile = pki->tlsKeyFile();
        }
    }
    auto events =
        options.eventsFile.empty() ? nullptr : std::make_unique<ZRMEventsFile>(options.eventsFile);
    const auto service = std::make_shared<ZRMRiskService>(std::move(events), options.faults,
                                                          options.quiet, std::cerr);
    ZRMHttpServer server(serverOptions, service);
    if (pki) {
        service->setDocuments(makeDocuments(options, *pki, server.port()));
    }
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
