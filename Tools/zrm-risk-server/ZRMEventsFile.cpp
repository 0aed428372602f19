#include "Tools/zrm-risk-server/ZRMEventsFile.h"

#include <cerrno>
#include <string_view>
#include <system_error>

#include <boost/json/serialize.hpp>
#include <fcntl.h>
#include <unistd.h>

std::string zrm_eventLine(std::chrono::system_clock::time_point time,
                          const ZRMServerRequest& request, const ZRMUpload& upload) {
    boost::json::object headers;
    for (const auto& [name, value] : request.headers) {
        const auto [place, isNew] = headers.emplace(name, value);
        if (!isNew) {
            place->value().as_string().append(", ").append(value);
        }
    }
    boost::json::object line;
    line["time"] = std::chrono::duration<double>(time.time_since_epoch()).count();
    line["path"] = request.target;
    line["headers"] = std::move(headers);
    line["bytes"] = request.body.size();
    line["eventType"] = upload.eventType;
    line["event"] = upload.event;
    return boost::json::serialize(line) + "\n";
}

ZRMEventsFile::ZRMEventsFile(const std::string& path)
    : descriptor_(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), path);
    }
}

ZRMEventsFile::~ZRMEventsFile() {
    ::close(descriptor_);
}

void ZRMEventsFile::append(const std::string& line) {
    const std::lock_guard lock(mutex_);
    std::string_view rest = line;
    while (!rest.empty()) {
        const auto written = ::write(descriptor_, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "events file");
        }
        rest.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}
