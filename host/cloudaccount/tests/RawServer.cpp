#include "host/cloudaccount/tests/RawServer.h"

#include <QHostAddress>
#include <QTcpServer>
#include <future>
#include <memory>
#include <utility>

namespace orvex::testing {
namespace {

constexpr int kSliceMs = 20;

}  // namespace

struct RawServer::Connection {
    std::unique_ptr<QTcpSocket> socket;
    std::string head;  ///< as far as it has come
};

RawServer::RawServer(Answer answer) : answer_(std::move(answer)) {
    std::promise<int> port;
    thread_ = std::thread([this, &port] {
        QTcpServer server;
        server.listen(QHostAddress::LocalHost);
        port.set_value(server.serverPort());
        std::vector<std::unique_ptr<Connection>> connections;
        while (!stops_) {
            server.waitForNewConnection(connections.empty() ? kSliceMs : 0);
            while (server.hasPendingConnections()) {
                connections.push_back(std::make_unique<Connection>());
                connections.back()->socket.reset(server.nextPendingConnection());
            }
            for (const auto& connection : connections) {
                Serve(*connection);
            }
            std::erase_if(connections, [](const auto& connection) {
                return connection->socket->state() == QAbstractSocket::UnconnectedState;
            });
        }
    });
    port_ = port.get_future().get();
}

RawServer::RawServer(const std::string& bytes)
    : RawServer(
          [bytes](RawServer&, QTcpSocket& socket, const std::string&) { SendAndClose(socket, bytes); }) {}

RawServer::~RawServer() {
    stops_ = true;
    thread_.join();
}

std::vector<std::string> RawServer::Requests() const {
    const std::lock_guard guard(mutex_);
    return requests_;
}

void RawServer::Serve(Connection& connection) {
    QTcpSocket& socket = *connection.socket;
    socket.waitForReadyRead(1);
    connection.head += socket.readAll().toStdString();
    std::string& head = connection.head;
    // A client that speaks TLS sends no line at all.
    if (head.empty() || (head.find("\r\n\r\n") == std::string::npos && head[0] != '\x16')) {
        return;
    }
    {
        const std::lock_guard guard(mutex_);
        requests_.push_back(head);
    }
    answer_(*this, socket, std::exchange(head, {}));
}

bool RawServer::Send(QTcpSocket& socket, const std::string& bytes) {
    socket.write(bytes.data(), static_cast<qint64>(bytes.size()));
    while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(-1)) {
    }
    return socket.state() == QAbstractSocket::ConnectedState;
}

void RawServer::SendAndClose(QTcpSocket& socket, const std::string& bytes) {
    Send(socket, bytes);
    socket.disconnectFromHost();
}

void RawServer::Hold(QTcpSocket& socket) const {
    while (!stops_ && socket.state() == QAbstractSocket::ConnectedState) {
        socket.waitForReadyRead(kSliceMs);
    }
}

std::string Head(const std::string& status, const std::string& headers) {
    return "HTTP/1.1 " + status + "\r\n" + headers + "\r\n";
}

}  // namespace orvex::testing
