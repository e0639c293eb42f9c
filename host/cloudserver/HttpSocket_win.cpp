#include "host/cloudserver/HttpServer.h"

#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

class PlainWire : public Wire {
  public:
    explicit PlainWire(socket_t socket) : socket_(socket) {}

    ssize_t Read(char* data, std::size_t size) override {
        return Result(::recv(socket_, data, static_cast<int>(size), 0), kWantsRead);
    }
    ssize_t Write(const char* data, std::size_t size) override {
        return Result(::send(socket_, data, static_cast<int>(size), 0), kWantsWrite);
    }

  private:
    static ssize_t Result(int count, ssize_t wanted) {
        return count == SOCKET_ERROR && WSAGetLastError() == WSAEWOULDBLOCK ? wanted : count;
    }

    const socket_t socket_;
};

class PlainWires : public WireFactory {
  public:
    std::unique_ptr<Wire> Make(socket_t socket) override { return std::make_unique<PlainWire>(socket); }
};

}  // namespace

std::unique_ptr<WireFactory> MakeWireFactory(const std::filesystem::path& certificate,
                                             const std::filesystem::path& key) {
    if (!certificate.empty() || !key.empty()) {
        throw LDataError(Text(text::kCloudServerNoTls));
    }
    return std::make_unique<PlainWires>();
}

bool WaitForSocket(socket_t socket, bool forWriting, std::chrono::milliseconds time) {
    WSAPOLLFD waited{socket, static_cast<SHORT>(forWriting ? POLLWRNORM : POLLRDNORM), 0};
    return WSAPoll(&waited, 1, static_cast<INT>(time.count())) > 0;
}

void MakeNonBlocking(socket_t socket) {
    u_long yes = 1;
    ioctlsocket(socket, static_cast<long>(FIONBIO), &yes);
}

void SetListenerOptions(socket_t socket) {
    const BOOL yes = TRUE;
    ::setsockopt(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&yes), sizeof yes);
}

BindFailure LastBindFailure() {
    const int error = WSAGetLastError();
    return error == WSAEADDRINUSE ? BindFailure::InUse
           : error == WSAEACCES   ? BindFailure::NotPermitted
                                  : BindFailure::NoSuchAddress;
}

void BlockSignals() {}

SignalKeeper::SignalKeeper() = default;
void SignalKeeper::PutBack() const {}

}  // namespace orvex
