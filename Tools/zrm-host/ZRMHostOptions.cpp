#include "Tools/zrm-host/ZRMHostOptions.h"

#include <filesystem>

#include <CLI/CLI.hpp>

#include "Tools/zrm-host/ZRMHostCommands.h"

namespace {

constexpr int kWrongUsage = 2;

void makeAbsolute(std::string& path) {
    if (!path.empty()) {
        path = std::filesystem::absolute(path).lexically_normal().string();
    }
}

// HOST:PORT:ADDRESS, where the address may hold colons.
std::string checkOverride(const std::string& text) {
    const auto first = text.find(':');
    const auto second = first == std::string::npos ? first : text.find(':', first + 1);
    const bool isWhole = second != std::string::npos && first > 0 && second > first + 1 &&
                         second + 1 < text.size() &&
                         text.find_first_not_of("0123456789", first + 1) == second;
    return isWhole ? "" : "'" + text + "' is not HOST:PORT:ADDRESS";
}

void addOptions(CLI::App& app, ZRMHostOptions& options) {
    auto& platform = options.platform;
    app.add_option("--home", platform.homeDirectory,
                   "Documents, application support, keychain and defaults live below it; made when "
                   "missing")
        ->type_name("DIR");
    app.add_option("--resources", platform.resourcesDirectory, "Holds the two resource bundles")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    app.add_option("--bundle", platform.bundleDirectory,
                   "The application bundle with its Info.plist")
        ->type_name("DIR")
        ->check(CLI::ExistingDirectory);
    app.add_option("--statistics-url", options.statisticsUrl, "Where events are uploaded to")
        ->type_name("URL");
    app.add_option("--log-level", options.logLevel, "0: every line, 1: errors only (default)")
        ->type_name("0|1")
        ->check(CLI::IsMember({0, 1}));
    app.add_option("--ca", platform.certificateAuthorityFile,
                   "PEM file of the authorities that TLS trusts")
        ->type_name("FILE")
        ->check(CLI::ExistingFile);
    app.add_option("--resolve", platform.resolveOverrides,
                   "Where a name and port are taken to lie; repeatable")
        ->type_name("HOST:PORT:ADDRESS[:PORT]")
        ->allow_extra_args(false)
        ->check(CLI::Validator(checkOverride, ""));
    app.add_flag("--interactive", options.interactive, "Prompt for commands");
}

}  // namespace

std::variant<ZRMHostOptions, int> zrm_readHostOptions(int argc, const char* const* argv,
                                                      std::ostream& out, std::ostream& err) {
    ZRMHostOptions options;
    CLI::App app{"A scriptable host application of ZRMMobileKit.", "zrm-host"};
    app.footer(zrm_hostCommandsHelp());
    addOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? 0 : kWrongUsage;
    }
    makeAbsolute(options.platform.homeDirectory);
    makeAbsolute(options.platform.resourcesDirectory);
    makeAbsolute(options.platform.bundleDirectory);
    makeAbsolute(options.platform.certificateAuthorityFile);
    return options;
}
