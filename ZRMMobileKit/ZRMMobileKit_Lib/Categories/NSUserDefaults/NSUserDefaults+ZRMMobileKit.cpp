#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSUserDefaults/NSUserDefaults+ZRMMobileKit.h"

namespace {

constexpr const char* kSettingsUpdateTimestampKey = "ZRMSettingsUpdateTimestamp";
constexpr const char* kLocationDetectTimestampKey = "ZRMLocationDetectTimestamp";
constexpr const char* kExecSessionIdKey = "ZRMExecSessionId";
constexpr const char* kExecSessionIdRefreshTimestampKey = "ZRMExecSessionIdRefreshTimestamp";

}  // namespace

ZRMMobileKitDefaults::ZRMMobileKitDefaults(std::unique_ptr<ZRMUserDefaultsSuite> suite)
    : suite_(std::move(suite)) {}

double ZRMMobileKitDefaults::settingsUpdateTimestamp() const {
    return suite_->doubleForKey(kSettingsUpdateTimestampKey).value_or(0);
}

void ZRMMobileKitDefaults::setSettingsUpdateTimestamp(double secondsSince1970) {
    suite_->setDouble(kSettingsUpdateTimestampKey, secondsSince1970);
}

double ZRMMobileKitDefaults::locationDetectTimestamp() const {
    return suite_->doubleForKey(kLocationDetectTimestampKey).value_or(0);
}

void ZRMMobileKitDefaults::setLocationDetectTimestamp(double secondsSince1970) {
    suite_->setDouble(kLocationDetectTimestampKey, secondsSince1970);
}

std::optional<std::string> ZRMMobileKitDefaults::execSessionId() const {
    return suite_->stringForKey(kExecSessionIdKey);
}

void ZRMMobileKitDefaults::setExecSessionId(const std::string& identifier) {
    suite_->setString(kExecSessionIdKey, identifier);
}

double ZRMMobileKitDefaults::execSessionIdRefreshTimestamp() const {
    return suite_->doubleForKey(kExecSessionIdRefreshTimestampKey).value_or(0);
}

void ZRMMobileKitDefaults::setExecSessionIdRefreshTimestamp(double secondsSince1970) {
    suite_->setDouble(kExecSessionIdRefreshTimestampKey, secondsSince1970);
}

std::shared_ptr<ZRMMobileKitDefaults> zrm_mobileKitDefaults(ZRMUserDefaults& userDefaults) {
    return std::make_shared<ZRMMobileKitDefaults>(
        userDefaults.openSuite(kZRMMobileKitDefaultsSuite));
}
