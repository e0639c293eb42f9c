#pragma once
// httplib's server on connections that end with it and have limits: a head of 32 KiB that arrives within ten
// seconds, 16 threads, and 64 connections that wait for one. It changes nothing of the process.
#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

// First, because it wants its own order of the system's headers.
#include <httplib.h>

namespace orvex {

/// Bytes of one connection, encrypted or not; does not wait.
class Wire {
  public:
    static constexpr ssize_t kFailed = -1;
    static constexpr ssize_t kWantsRead = -2;   ///< to be called again once the socket is readable
    static constexpr ssize_t kWantsWrite = -3;  ///< ... writable

    virtual ~Wire() = default;
    /// Number of bytes, 0 at the end, or one of the constants.
    virtual ssize_t Read(char* data, std::size_t size) = 0;
    virtual ssize_t Write(const char* data, std::size_t size) = 0;
};

/// Makes the wires of a server's connections; thread-safe.
class WireFactory {
  public:
    virtual ~WireFactory() = default;
    virtual std::unique_ptr<Wire> Make(socket_t socket) = 0;
};

/// Wires without encryption, or with a certificate and its key. Throws LDataError if these cannot be used.
std::unique_ptr<WireFactory> MakeWireFactory(const std::filesystem::path& certificate,
                                             const std::filesystem::path& key);

// Sockets and signals.

/// True if the socket became readable or writable within the time, or failed.
bool WaitForSocket(socket_t socket, bool forWriting, std::chrono::milliseconds time);
void MakeNonBlocking(socket_t socket);
/// Options of the listening socket: its port is free again at once, and never shared.
void SetListenerOptions(socket_t socket);
/// The last failure of a socket call of this thread.
enum class BindFailure { InUse, NotPermitted, NoSuchAddress };
BindFailure LastBindFailure();
/// Keeps the calling thread and those it starts free of signals.
void BlockSignals();

/// The process's handler of SIGPIPE, put back in the call (httplib's constructor changes it).
class SignalKeeper {
  public:
    SignalKeeper();
    void PutBack() const;

  private:
    void (*handler_)(int) = nullptr;
};

class HttpServer : private SignalKeeper, public httplib::Server {
  public:
    /// `answer` is called on several threads.
    HttpServer(std::unique_ptr<WireFactory> wires, Handler answer);
    ~HttpServer() override;

    /// Listens and starts to answer; returns the port. Throws LDataError with a text for the user.
    int Start(const std::string& address, int port);
    void Stop();
    bool IsStopping() const { return stopping_; }

  private:
    bool process_and_close_socket(socket_t socket) override;

    std::unique_ptr<WireFactory> wires_;
    std::atomic<bool> stopping_ = false;
    std::atomic<bool> ended_ = false;
    std::atomic<int> waiting_ = 0;  ///< connections that no thread serves yet
    std::thread thread_;
};

}  // namespace orvex
