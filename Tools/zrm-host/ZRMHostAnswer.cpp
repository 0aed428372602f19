#include "Tools/zrm-host/ZRMHostAnswer.h"

#include <algorithm>

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

ZRMError zrm_hostError(ZRMHostErrorCode code, const std::string& message) {
    return ZRMError::withDescription(kZRMHostErrorDomain, code, message);
}

std::string ZRMHostAnswer::line() const {
    std::string printableOp = op;
    const auto isUnprintable = [](char letter) { return letter < ' ' || letter > '~'; };
    std::replace_if(printableOp.begin(), printableOp.end(), isUnprintable, '?');
    boost::json::object line;
    line["op"] = printableOp;
    if (error) {
        auto& details = line["error"].emplace_object();
        details["domain"] = error->domain();
        details["code"] = error->code();
        details["message"] = error->localizedDescription();
    } else {
        line["error"] = nullptr;
    }
    if (value) {
        line["value"] = *value;
    }
    return boost::json::serialize(line);
}
