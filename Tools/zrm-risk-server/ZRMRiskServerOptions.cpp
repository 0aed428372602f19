#include "Tools/zrm-risk-server/ZRMRiskServerOptions.h"

#include <charconv>

#include <CLI/CLI.hpp>

#include "Tools/zrm-risk-server/ZRMDocuments.h"

namespace {

constexpr int kWrongUsage = 2;

constexpr const char* kFaultHelp =
    "A fault to commit, as ENDPOINT:KIND[*COUNT]; repeatable. ENDPOINT is stat, config, tag, "
    "ocsp, crl or x5u. "
    "KIND "
    "is a status number (200 to 599), reset, close, garbage or delay=DURATION (2s, 500ms). COUNT "
    "is "
    "the number of requests it befalls, 1 when left out. The faults of an endpoint come in the "
    "order given; once they are used up it serves as usual.";

}  // namespace

std::optional<ZRMListenAddress> ZRMListenAddress::parse(std::string_view text) {
    const auto colon = text.rfind(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    auto host = text.substr(0, colon);
    const auto digits = text.substr(colon + 1);
    if (host.starts_with('[') && host.ends_with(']')) {
        host = host.substr(1, host.size() - 2);
    } else if (host.find(':') != std::string_view::npos) {
        return std::nullopt;
    }
    ZRMListenAddress address;
    const auto* end = digits.data() + digits.size();
    const auto [stop, failure] = std::from_chars(digits.data(), end, address.port);
    if (host.empty() || failure != std::errc() || stop != end) {
        return std::nullopt;
    }
    address.host = host;
    return address;
}

std::variant<ZRMRiskServerOptions, int> zrm_readRiskServerOptions(int argc, const char* const* argv,
                                                                  std::ostream& out,
                                                                  std::ostream& err) {
    ZRMRiskServerOptions options;
    CLI::App app{"A reference risk server for demos, tests and integrators.", "zrm-risk-server"};
    app.footer(
        "Takes uploads at /stat. With --pki it serves signed settings at /config/v1 and signed "
        "device tags at /zwjsqd, an OCSP responder at /ocsp and lists of revoked certificates "
        "below /crl.\nMisbehaviours: " +
        zrm_misbehavioursHelp() + ".");
    app.add_option_function<std::string>(
           "--listen",
           [&options](const std::string& text) {
               const auto address = ZRMListenAddress::parse(text);
               if (!address) {
                   throw CLI::ValidationError("--listen", "'" + text + "' is not HOST:PORT");
               }
               options.listen = *address;
           },
           "Where to listen, 127.0.0.1:8443 by default; port 0 picks a free one")
        ->type_name("HOST:PORT");
    app.add_flag("--plain", options.plain, "Speak HTTP instead of HTTPS");
    app.add_option("--pki", options.pkiDirectory,
                   "Keeps the keys and certificates, which are made on first use; clients need its "
                   "VelorinRootCA.crt and tls-ca.pem")
        ->type_name("DIR");
    app.add_option("--settings", options.settingsFile,
                   "Flat JSON of settings to sign and serve; read anew for each request")
        ->type_name("FILE");
    app.add_option_function<std::string>(
           "--tag-interval",
           [&options](const std::string& text) {
               const auto interval = zrm_isoDurationFromText(text);
               if (!interval) {
                   throw CLI::ValidationError("--tag-interval", "'" + text + "' is no duration");
               }
               options.tagInterval = *interval;
           },
           "After which a device is to ask for its tag again: ISO 8601, or such as 90s, 30m, 2h; "
           "P1D by default")
        ->type_name("DURATION");
    app.add_flag("--x5u", options.namesChain,
                 "Name the signing certificate by its address instead of delivering the chain");
    app.add_option_function<std::vector<std::string>>(
           "--misbehave",
           [&options](const std::vector<std::string>& texts) {
               for (const auto& text : texts) {
                   const auto misbehaviour = zrm_misbehaviourFromText(text);
                   if (!misbehaviour) {
                       throw CLI::ValidationError("--misbehave",
                                                  "'" + text + "' is no misbehaviour");
                   }
                   options.misbehaviours.insert(*misbehaviour);
               }
           },
           "Do that wrong with every signed document; repeatable")
        ->type_name("KIND")
        ->allow_extra_args(false);
    app.add_option("--events", options.eventsFile, "Appends one JSON line per accepted upload")
        ->type_name("FILE");
    app.add_option_function<std::vector<std::string>>(
           "--fault",
           [&options](const std::vector<std::string>& texts) {
               for (const auto& text : texts) {
                   const auto fault = ZRMFault::parse(text);
                   if (!fault) {
                       throw CLI::ValidationError("--fault", "'" + text + "' is no fault");
                   }
                   options.faults.push_back(*fault);
               }
           },
           kFaultHelp)
        ->type_name("SPEC")
        ->allow_extra_args(false);
    app.add_flag("--quiet", options.quiet, "Report malformed uploads only, not every request");
    try {
        app.parse(argc, argv);
        if (!options.plain && options.pkiDirectory.empty()) {
            throw CLI::ValidationError("HTTPS needs --pki DIR; --plain does without");
        }
        if (!options.settingsFile.empty() && options.pkiDirectory.empty()) {
            throw CLI::ValidationError("--settings needs --pki DIR for the keys to sign with");
        }
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? 0 : kWrongUsage;
    }
    return options;
}
