// The command line of zrm-risk-server.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "Tools/zrm-risk-server/ZRMFault.h"
#include "Tools/zrm-risk-server/ZRMMisbehaviour.h"

struct ZRMListenAddress {
    std::string host = "127.0.0.1";  // a name or an address, IPv6 without brackets
    std::uint16_t port = 8443;       // 0 picks a free one

    // Reads HOST:PORT, where an IPv6 host stands in brackets.
    static std::optional<ZRMListenAddress> parse(std::string_view text);

    friend bool operator==(const ZRMListenAddress&, const ZRMListenAddress&) = default;
};

struct ZRMRiskServerOptions {
    ZRMListenAddress listen;
    bool plain = false;
    std::string pkiDirectory;         // empty only with `plain`
    std::string eventsFile;           // empty: uploads are not kept
    std::string settingsFile;         // empty: no settings are served
    std::string tagInterval = "P1D";  // ISO 8601
    bool namesChain = false;          // by its address, "x5u", in place of "x5c"
    ZRMMisbehaviours misbehaviours;
    std::vector<ZRMFault> faults;
    bool quiet = false;
};

// The options, or the exit status where there is nothing to run: 0 after --help, 2 after wrong
// usage.
std::variant<ZRMRiskServerOptions, int> zrm_readRiskServerOptions(int argc, const char* const* argv,
                                                                  std::ostream& out,
                                                                  std::ostream& err);
