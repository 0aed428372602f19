// The file that keeps one JSON line per accepted upload.
#pragma once

#include <chrono>
#include <mutex>
#include <string>

#include "Tools/zrm-risk-server/ZRMServerMessages.h"
#include "Tools/zrm-risk-server/ZRMUpload.h"

// {"time":SECONDS-SINCE-1970,"path":…,"headers":{…},"bytes":…,"eventType":…,"event":{…}} and a line
// feed. Headers that arrived more than once are joined by ", "; bytes is the body's length.
std::string zrm_eventLine(std::chrono::system_clock::time_point time,
                          const ZRMServerRequest& request, const ZRMUpload& upload);

// Appends whole lines. From any thread.
class ZRMEventsFile {
  public:
    // Opens or creates the file. Throws std::system_error.
    explicit ZRMEventsFile(const std::string& path);
    ~ZRMEventsFile();
    ZRMEventsFile(const ZRMEventsFile&) = delete;
    ZRMEventsFile& operator=(const ZRMEventsFile&) = delete;

    // The line is in the file on return, or std::system_error is thrown.
    void append(const std::string& line);

  private:
    std::mutex mutex_;
    int descriptor_;
};
