// Far ends on this machine: a server that counts what comes, and a port that refuses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

// A listening or merely bound TCP socket at 127.0.0.1, on a port of the system's choice. Throws
// std::runtime_error when there is none.
class ZRMLoopbackSocket {
  public:
    enum class Kind { Listens, Refuses };

    explicit ZRMLoopbackSocket(Kind kind);
    ~ZRMLoopbackSocket();
    ZRMLoopbackSocket(const ZRMLoopbackSocket&) = delete;
    ZRMLoopbackSocket& operator=(const ZRMLoopbackSocket&) = delete;

    [[nodiscard]] int file() const { return file_; }
    [[nodiscard]] std::uint16_t port() const { return port_; }

  private:
    int file_ = -1;
    std::uint16_t port_ = 0;
};

// Speaks plain HTTP in a thread of its own. It holds each answer back for a moment, so that
// requests that are under way at once are seen to be.
class ZRMLoopbackServer {
  public:
    enum class Manner { Answers, KeepsSilent };

    struct Seen {
        std::vector<std::size_t> requestBytes;  // line, headers and body of each
        std::size_t repeatedBodies = 0;
        std::size_t mostAtOnce = 0;
        std::vector<std::string> bodies;  // of each
    };

    explicit ZRMLoopbackServer(Manner manner);
    ~ZRMLoopbackServer();
    ZRMLoopbackServer(const ZRMLoopbackServer&) = delete;
    ZRMLoopbackServer& operator=(const ZRMLoopbackServer&) = delete;

    [[nodiscard]] std::uint16_t port() const { return socket_.port(); }
    // From any thread.
    [[nodiscard]] Seen seen() const;
    // Waits until so many requests came. Throws std::runtime_error after some seconds.
    void awaitRequests(std::size_t count) const;

  private:
    struct Connection {
        std::string input;
        bool isWaiting = false;  // for its answer
    };

    void serve();
    void accept();
    // False when the connection has ended.
    bool read(int file, Connection& connection);
    void take(Connection& connection);
    void answerAll();

    const Manner manner_;
    ZRMLoopbackSocket socket_{ZRMLoopbackSocket::Kind::Listens};
    std::map<int, Connection> connections_;
    std::size_t waiting_ = 0;
    mutable std::mutex mutex_;  // guards what follows
    Seen seen_;
    std::set<std::string> bodies_;
    bool isOver_ = false;
    std::thread thread_;  // last, so that it sees all else made
};
