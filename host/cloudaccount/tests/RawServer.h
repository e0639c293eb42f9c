#pragma once
// Server that sends exactly what a test says, for what no proper server can be told to do.
#include <QTcpSocket>
#include <atomic>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orvex::testing {

/// On a thread of its own, which gives one answer at a time. A connection is kept for further requests unless
/// an answer closes it.
class RawServer {
  public:
    /// Called on the server's thread for each request; `head` ends with its empty line.
    using Answer = std::function<void(RawServer& server, QTcpSocket& socket, const std::string& head)>;

    explicit RawServer(Answer answer);
    /// One that sends the same bytes to everyone and closes the connection.
    explicit RawServer(const std::string& bytes);
    ~RawServer();

    /// "http://127.0.0.1:PORT"
    std::string Address() const { return "http://127.0.0.1:" + std::to_string(port_); }
    int Port() const { return port_; }
    /// Heads of all requests.
    std::vector<std::string> Requests() const;

    /// False when the client is gone.
    static bool Send(QTcpSocket& socket, const std::string& bytes);
    static void SendAndClose(QTcpSocket& socket, const std::string& bytes);
    /// Waits until the client or the test ends.
    void Hold(QTcpSocket& socket) const;

  private:
    struct Connection;

    void Serve(Connection& connection);

    Answer answer_;
    int port_ = 0;
    std::atomic<bool> stops_ = false;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::thread thread_;
};

/// Head of an answer with its empty line; `headers`: complete lines.
std::string Head(const std::string& status, const std::string& headers = {});

}  // namespace orvex::testing
