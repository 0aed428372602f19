// Whether the library keeps a trace file, and for how long.
#pragma once

// A value.
class ZRMLoggerSettings {
  public:
    ZRMLoggerSettings() = default;
    ZRMLoggerSettings(bool writeLogsToFile, bool keepLogsInFile, double logFileKeepInterval)
        : writeLogsToFile_(writeLogsToFile),
          keepLogsInFile_(keepLogsInFile),
          logFileKeepInterval_(logFileKeepInterval) {}

    [[nodiscard]] bool writeLogsToFile() const { return writeLogsToFile_; }
    void setWriteLogsToFile(bool write) { writeLogsToFile_ = write; }

    // Whether the lines of earlier runs stay.
    [[nodiscard]] bool keepLogsInFile() const { return keepLogsInFile_; }
    void setKeepLogsInFile(bool keep) { keepLogsInFile_ = keep; }

    // Seconds from its creation after which the file is deleted.
    [[nodiscard]] double logFileKeepInterval() const { return logFileKeepInterval_; }
    void setLogFileKeepInterval(double seconds) { logFileKeepInterval_ = seconds; }

    friend bool operator==(const ZRMLoggerSettings&, const ZRMLoggerSettings&) = default;

  private:
    bool writeLogsToFile_ = false;
    bool keepLogsInFile_ = false;
    double logFileKeepInterval_ = 0;
};
