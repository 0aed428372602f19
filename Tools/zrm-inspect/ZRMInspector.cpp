#include "Tools/zrm-inspect/ZRMInspector.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "Tools/zrm-inspect/ZRMInspection.h"
#include "Tools/zrm-inspect/ZRMJwsInspection.h"
#include "Tools/zrm-inspect/ZRMSettingsInspection.h"
#include "Tools/zrm-inspect/ZRMSignatureInspection.h"
#include "Tools/zrm-inspect/ZRMStoreInspection.h"
#include "Tools/zrm-inspect/ZRMTextInspections.h"
#include "Tools/zrm-inspect/ZRMUploadInspection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

constexpr int kGood = 0;
constexpr int kNotGood = 1;
constexpr int kWrongUsage = 2;

using Inspect = std::function<ZRMInspection(const std::string&)>;

struct Subcommand {
    CLI::App* app;
    Inspect inspect;
};

Subcommand add(CLI::App& parent, const char* name, const char* argument, const char* meaning,
               Inspect inspect, std::string& value) {
    auto* app = parent.add_subcommand(name, meaning);
    app->add_option(argument, value)->required()->type_name("");
    return {app, std::move(inspect)};
}

Subcommand addJws(CLI::App& app, std::string& value) {
    const auto options = std::make_shared<ZRMJwsInspectionOptions>();
    auto jws = add(
        app, "jws", "FILE", "A signed document: its form and the results of its signatures",
        [options](const std::string& path) { return zrm_inspectJws(path, *options); }, value);
    jws.app->add_option("--root", options->rootPath, "The pinned root certificate as PEM");
    jws.app->add_option("--at", options->atSecondsSince1970,
                        "Verifies as of that many seconds since 1970");
    jws.app->add_flag("--no-revocation", options->withoutRevocation,
                      "Asks nobody for revoked certificates");
    jws.app->add_flag("--pinned-anchors-only", options->pinnedAnchorsOnly,
                      "Takes no delivered certificate for an anchor");
    return jws;
}

Subcommand addSettings(CLI::App& app, std::string& value) {
    const auto rootPath = std::make_shared<std::string>();
    auto settings = add(
        app, "settings", "FILE", "The settings that a document makes, and its rejected keys",
        [rootPath](const std::string& path) { return zrm_inspectSettings(path, *rootPath); },
        value);
    settings.app->add_option("--root", *rootPath,
                             "The pinned root certificate as PEM; verifies as well");
    return settings;
}

std::vector<Subcommand> addSubcommands(CLI::App& app, std::string& value) {
    std::vector<Subcommand> all{
        add(app, "upload", "FILE", "The body of an upload, down to its event", zrm_inspectUpload,
            value),
        add(app, "store", "HOME", "The queued records, oldest first, with their event types",
            zrm_inspectStore, value),
        add(app, "duration", "TEXT", "An ISO 8601 duration in seconds", zrm_inspectDuration, value),
        add(app, "server-date", "TEXT", "A \"Date\" header in seconds since 1970",
            zrm_inspectServerDate, value),
        add(app, "http-url", "TEXT", "Whether the library takes a text for an HTTP URL",
            zrm_inspectHttpUrl, value)};
    all.push_back(addJws(app, value));
    all.push_back(addSettings(app, value));
    const auto infoPlist = std::make_shared<std::string>();
    all.push_back(add(
        app, "signature", "FILE", "The code signature of an executable file, each slice of it",
        [infoPlist](const std::string& path) { return zrm_inspectSignature(path, *infoPlist); },
        value));
    all.back().app->add_option("--info-plist", *infoPlist, "The application's Info.plist");
    auto* base64Url = app.add_subcommand("base64url", "encode or decode a text");
    base64Url->require_subcommand(1);
    all.push_back(add(*base64Url, "encode", "TEXT", "The base64url of a text",
                      zrm_inspectBase64UrlEncode, value));
    all.push_back(add(*base64Url, "decode", "TEXT", "What a text is the base64url of",
                      zrm_inspectBase64UrlDecode, value));
    return all;
}

// The words as CLI11 takes them, last first. The one word that follows a subcommand is its argument
// even where it begins with "-", as base64url may.
std::vector<std::string> wordsLastFirst(int argc, const char* const* argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    const std::size_t names = !words.empty() && words.front() == "base64url" ? 2 : 1;
    const bool needsMark = words.size() == names + 1 && words.back().starts_with('-') &&
                           words.back() != "--help" && words.back() != "-h";
    if (needsMark) {
        words.insert(words.end() - 1, "--");
    }
    std::reverse(words.begin(), words.end());
    return words;
}

}  // namespace

int zrm_inspect(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
    CLI::App app{"Looks into what ZRMMobileKit reads and writes; prints JSON.", "zrm-inspect"};
    app.footer("Exit status: 0 when the input is good, 1 when it is not, 2 for wrong usage.");
    app.require_subcommand(1);
    std::string value;
    const auto subcommands = addSubcommands(app, value);
    try {
        app.parse(wordsLastFirst(argc, argv));
        for (const auto& subcommand : subcommands) {
            if (subcommand.app->parsed()) {
                const auto inspection = subcommand.inspect(value);
                const auto text = zrm_compactJsonText(inspection.report);
                out << (text ? text.value() : "null") << std::endl;
                return inspection.isGood && text ? kGood : kNotGood;
            }
        }
        throw CLI::RequiredError("A subcommand");
    } catch (const CLI::ParseError& error) {
        return app.exit(error, out, err) == 0 ? kGood : kWrongUsage;
    }
}
