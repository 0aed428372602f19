#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticBaseOperation.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

ZRMStatisticBaseOperation::ZRMStatisticBaseOperation(std::shared_ptr<ZRMStatisticsData> jwsData,
                                                     std::shared_ptr<ZRMStatisticsContext> context)
    : ZRMErrorProneOperation(context->platform()->consoleLog),
      jwsData_(std::move(jwsData)),
      context_(std::move(context)) {}

void ZRMStatisticBaseOperation::execute() {
    auto outcome = outcome_ ? *std::exchange(outcome_, std::nullopt) : runAlone();
    if (outcome.log) {
        outcome.log();
    }
    finishWithError(std::move(outcome.error));
}

ZRMStatisticBaseOperation::Outcome ZRMStatisticBaseOperation::runAlone() {
    Outcome outcome;
    context_->performBlockAndWait([&] {
        outcome = changeRecords();
        if (outcome.error) {
            context_->rollback();
        } else if (auto error = context_->save()) {
            outcome = {error, [this, failure = *error] { logSaveFailure(failure); }};
        }
    });
    return outcome;
}

ZRMStatisticBaseOperation::Found ZRMStatisticBaseOperation::findStatistic() {
    // Data of the store knows its record; whatever it finds has the same bytes.
    const auto own = context_->statisticOf(*jwsData_);
    if (own && own.value()) {
        return {own.value(), {}};
    }
    auto request = ZRMStatisticEntity::fetchRequest();
    request.jws = jwsData_->bytes();
    request.fetchLimit = 1;
    if (own && !request.jws) {
        return {std::nullopt, {std::nullopt, [this] { logMissing(); }}};
    }
    const auto fetched = own ? context_->executeFetchRequest(request)
                             : ZRMResult<std::vector<ZRMStatisticEntity>>(own.error());
    if (!fetched) {
        return {std::nullopt,
                {fetched.error(), [this, text = request.description(), error = fetched.error()] {
                     zrm_logError(this, "Can't execute fetch request '" + text +
                                            "': " + error.localizedDescription());
                 }}};
    }
    if (fetched.value().empty()) {
        return {std::nullopt, {std::nullopt, [this] { logMissing(); }}};
    }
    return {fetched.value().front(), {}};
}

void ZRMStatisticBaseOperation::logMissing() {
    zrm_logError(this, "No statistic found for jwsData: " + jwsText());
}

std::string ZRMStatisticBaseOperation::jwsText() const {
    const auto bytes = jwsData_->bytes();
    if (!bytes) {
        return "(null)";
    }
    auto text = zrm_textFromData(*bytes);
    return zrm_isValidUtf8(text) ? text : "(null)";
}
