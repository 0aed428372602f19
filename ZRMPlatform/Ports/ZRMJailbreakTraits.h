// What only the operating system can say about traits of a jailbroken device.
#pragma once

#include <string>

// The application's way of asking whether some program would open a URL.
class ZRMUrlOpener {
  public:
    virtual ~ZRMUrlOpener() = default;
    // On the main queue only; never opens anything.
    [[nodiscard]] virtual bool canOpenUrl(const std::string& url) const = 0;
};

class ZRMCommandProcessor {
  public:
    virtual ~ZRMCommandProcessor() = default;
    // What the C library's `system`, looked up through the loader's default search and called with
    // a null command, answers: not 0 where a command processor is available.
    [[nodiscard]] virtual int availability() const = 0;
};

class ZRMFileAccess {
  public:
    virtual ~ZRMFileAccess() = default;
    // By the rights of the process; false when there is nothing at the path.
    [[nodiscard]] virtual bool isReadable(const std::string& path) const = 0;
    [[nodiscard]] virtual bool isWritable(const std::string& path) const = 0;
};
