#include "Benchmarks/ZRMHostRuns.h"

#include <filesystem>
#include <stdexcept>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

// The library refuses numbers and names without a dot.
constexpr const char* kHostName = "risk.example.com";

constexpr const char* kInfoPlist = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>CFBundleIdentifier</key><string>com.example.demobank</string>
<key>CFBundleVersion</key><string>42</string>
</dict></plist>
)";

}  // namespace

ZRMHostRuns::ZRMHostRuns(FarEnd farEnd) : farEnd_(std::move(farEnd)) {
    directory_.writeFile("Bench.app/Info.plist", kInfoPlist);
}

std::string ZRMHostRuns::makeHome() {
    auto path = directory_.below("home" + std::to_string(++homes_));
    std::filesystem::create_directory(path);
    return path;
}

std::string ZRMHostRuns::makeHomeWithEvents(std::size_t count) {
    auto home = makeHome();
    static_cast<void>(
        run(home, {{"scenario", "report"}, {"count", count}, {"everyMicroseconds", 0}}));
    return home;
}

ZRMChildProcess ZRMHostRuns::start(const std::string& home, ZRMDictionary options) const {
    const auto port = std::to_string(farEnd_.port);
    const bool isSecure = !farEnd_.certificateAuthorityFile.empty();
    options["home"] = home;
    options["bundle"] = directory_.below("Bench.app");
    options["url"] = std::string(isSecure ? "https" : "http") + "://" + kHostName + ":" + port +
                     "/stat?cid=bench";
    options["resolve"] =
        ZRMJsonArray{std::string(kHostName) + ":" + port + ":127.0.0.1",
                     "localhost:8443:127.0.0.1:" + std::to_string(farEnd_.documentsPort)};
    options["ca"] = farEnd_.certificateAuthorityFile;
    options["resources"] = resources_;
    const auto text = zrm_compactJsonText(options);
    zrm_mustHold(text.hasValue(), "the options are JSON");
    return {{ZRM_BENCH_HOST, text.value()}, directory_.below("host.log")};
}

ZRMDictionary ZRMHostRuns::run(const std::string& home, ZRMDictionary options) const {
    auto host = start(home, std::move(options));
    auto measured = zrm_measuredFromLine(host.readLine());
    host.waitForSuccess();
    return measured;
}

ZRMDictionary zrm_measuredFromLine(const std::string& line) {
    const auto json = zrm_jsonFromText(line);
    zrm_mustHold(json && json.value().is_object(), "the host wrote JSON: " + line);
    return json.value().get_object();
}

double zrm_number(const ZRMDictionary& measured, const char* key) {
    const auto* value = measured.if_contains(key);
    zrm_mustHold(value != nullptr && value->is_number(), std::string("the host measured ") + key);
    return value->to_number<double>();
}

void zrm_mustHold(bool holds, const std::string& what) {
    if (!holds) {
        throw std::runtime_error("must hold and does not: " + what);
    }
}
