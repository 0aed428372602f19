#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerImpl.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogMessage.h"

namespace {

constexpr const char* kTracesFileName = "zrm-traces.log";

// The first error of the steps, which are taken until one fails.
template <class... Steps>
std::optional<ZRMError> firstError(Steps... steps) {
    std::optional<ZRMError> error;
    static_cast<void>((... || (error = steps()).has_value()));
    return error;
}

}  // namespace

std::shared_ptr<ZRMFileLoggerImpl> ZRMFileLoggerImpl::sharedInstance() {
    const auto platform = ZRMPlatform::current();
    return platform->instances->shared<ZRMFileLoggerImpl>([&platform] {
        return std::make_shared<ZRMFileLoggerImpl>(
            *platform, ZRMLoggerCollection::sharedInstance(), kZRMLogLevelError,
            zrm_documentDirectory(*platform->directories) + "/" + kTracesFileName);
    });
}

ZRMFileLoggerImpl::ZRMFileLoggerImpl(const ZRMPlatform& platform,
                                     std::weak_ptr<ZRMLoggerCollection> loggers,
                                     ZRMLogLevel logLevel, std::string filePath)
    : clock_(platform.clock),
      executor_(platform.executor),
      consoleLog_(platform.consoleLog),
      fileManager_(platform.fileManager),
      documentsDirectory_(zrm_documentDirectory(*platform.directories)),
      loggers_(std::move(loggers)),
      tracesFilePath_(std::move(filePath)),
      logLevel_(logLevel),
      queue_(platform.executor, zrm_queueNameForClass("ZRMFileLoggerImpl"), 1) {}

void ZRMFileLoggerImpl::logMessage(const std::string& message, ZRMLogLevel level) {
    if (level < logLevel_) {
        return;
    }
    enqueue([line = ZRMLogMessage::logForMessage(*clock_, *executor_, message, level)](
                ZRMFileLoggerImpl& logger) { logger.writeLine(line); });
}

void ZRMFileLoggerImpl::clearLogFile() {
    enqueue([](ZRMFileLoggerImpl& logger) { logger.truncateFile(); });
}

void ZRMFileLoggerImpl::deleteLogFile() {
    enqueue([](ZRMFileLoggerImpl& logger) { logger.removeFile(); });
}

void ZRMFileLoggerImpl::enqueue(std::function<void(ZRMFileLoggerImpl&)> work) {
    queue_.addOperationWithBlock([weakSelf = weak_from_this(), work = std::move(work)] {
        if (const auto self = weakSelf.lock()) {
            work(*self);
        }
    });
}

void ZRMFileLoggerImpl::writeLine(const std::string& line) {
    auto* const stream = outputStream();
    if (stream == nullptr) {
        return;
    }
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(line.data()), line.size());
    if (firstError([stream] { return stream->seekToEnd(); },
                   [stream, bytes] { return stream->write(bytes); },
                   [stream] { return stream->synchronize(); })) {
        consoleLog_->write("No space left on device to write logs\n");
    }
}

void ZRMFileLoggerImpl::truncateFile() {
    auto* const stream = outputStream();
    if (stream == nullptr) {
        return;
    }
    if (const auto error = firstError([stream] { return stream->seekTo(0); },
                                      [stream] { return stream->truncateAt(0); },
                                      [stream] { return stream->synchronize(); })) {
        reportToOthers(*error);
    }
}

void ZRMFileLoggerImpl::removeFile() {
    outputStream_.reset();
    if (const auto error = fileManager_->removeItem(tracesFilePath_)) {
        reportToOthers(*error);
    }
}

ZRMFileHandle* ZRMFileLoggerImpl::outputStream() {
    if (outputStream_ == nullptr && !createLogFileFailed_ && !createLogFileIfNeeded()) {
        if (auto opened = fileManager_->openForUpdating(tracesFilePath_)) {
            outputStream_ = std::move(opened).value();
        }
    }
    return outputStream_.get();
}

std::optional<ZRMError> ZRMFileLoggerImpl::createLogFileIfNeeded() {
    auto error = createLogFile();
    if (error) {
        createLogFileFailed_ = true;
        reportToOthers(*error);
    }
    return error;
}

std::optional<ZRMError> ZRMFileLoggerImpl::createLogFile() {
    // The documents directory is what counts here, wherever the file itself lies.
    if (!fileManager_->directoryExists(documentsDirectory_)) {
        if (auto error = fileManager_->createDirectory(documentsDirectory_)) {
            return error;
        }
    }
    if (fileManager_->fileExists(tracesFilePath_)) {
        return std::nullopt;
    }
    return firstError([this] { return fileManager_->createFile(tracesFilePath_); },
                      [this] { return fileManager_->excludeFromBackup(tracesFilePath_); });
}

void ZRMFileLoggerImpl::reportToOthers(const ZRMError& error) {
    if (const auto loggers = loggers_.lock()) {
        loggers->logMessage(zrm_logText(this, __FILE__, __LINE__, error.localizedDescription()),
                            kZRMLogLevelError, this);
    }
}
