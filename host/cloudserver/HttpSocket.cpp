// HttpServer.h includes the library, and that the sockets.
#include "host/cloudserver/HttpServer.h"

#include <fcntl.h>
#include <openssl/err.h>
#include <openssl/ssl.h>
#include <poll.h>

#include <cerrno>
#include <csignal>

#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

class PlainWire : public Wire {
  public:
    explicit PlainWire(socket_t socket) : socket_(socket) {}

    ssize_t Read(char* data, std::size_t size) override {
        return Result(::recv(socket_, data, size, 0), kWantsRead);
    }
    ssize_t Write(const char* data, std::size_t size) override {
        return Result(::send(socket_, data, size, MSG_NOSIGNAL), kWantsWrite);
    }

  private:
    static ssize_t Result(ssize_t count, ssize_t wanted) {
        const bool isLater = count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
        return isLater ? wanted : count;
    }

    const socket_t socket_;
};

class PlainWires : public WireFactory {
  public:
    std::unique_ptr<Wire> Make(socket_t socket) override { return std::make_unique<PlainWire>(socket); }
};

using SslContext = std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)>;

class TlsWire : public Wire {
  public:
    TlsWire(SSL_CTX* context, socket_t socket) : ssl_(SSL_new(context), SSL_free) {
        if (ssl_) {
            SSL_set_fd(ssl_.get(), socket);
            SSL_set_accept_state(ssl_.get());
        }
    }
    ~TlsWire() override {
        if (ssl_ && isSound_) {
            ERR_clear_error();
            SSL_shutdown(ssl_.get());
        }
    }
    TlsWire(const TlsWire&) = delete;
    TlsWire& operator=(const TlsWire&) = delete;

    // The handshake is part of the first read.
    ssize_t Read(char* data, std::size_t size) override {
        return Call([&](std::size_t* count) { return SSL_read_ex(ssl_.get(), data, size, count); });
    }
    ssize_t Write(const char* data, std::size_t size) override {
        return Call([&](std::size_t* count) { return SSL_write_ex(ssl_.get(), data, size, count); });
    }

  private:
    ssize_t Call(const auto& call) {
        if (!ssl_ || !isSound_) {
            return kFailed;
        }
        ERR_clear_error();
        std::size_t count = 0;
        const int result = call(&count);
        if (result > 0) {
            return static_cast<ssize_t>(count);
        }
        const int error = SSL_get_error(ssl_.get(), result);
        ERR_clear_error();
        if (error == SSL_ERROR_WANT_READ || error == SSL_ERROR_WANT_WRITE) {
            return error == SSL_ERROR_WANT_READ ? kWantsRead : kWantsWrite;
        }
        isSound_ = error == SSL_ERROR_ZERO_RETURN;
        return isSound_ ? 0 : kFailed;
    }

    std::unique_ptr<SSL, decltype(&SSL_free)> ssl_;
    bool isSound_ = true;
};

class TlsWires : public WireFactory {
  public:
    explicit TlsWires(SslContext context) : context_(std::move(context)) {}
    std::unique_ptr<Wire> Make(socket_t socket) override {
        return std::make_unique<TlsWire>(context_.get(), socket);
    }

  private:
    SslContext context_;
};

/// Why the last OpenSSL call of this thread failed; the first reason is the cause, the others say who
/// noticed.
std::wstring SslErrorText() {
    const unsigned long error = ERR_peek_error();
    const char* const reason = ERR_reason_error_string(error);
    std::wstring text = ERR_SYSTEM_ERROR(error) ? SystemErrorText(ERR_GET_REASON(error))
                                                : FromUtf8(reason != nullptr ? reason : "unknown error");
    ERR_clear_error();
    return text;
}

void Require(bool succeeded, const std::filesystem::path& file) {
    if (!succeeded) {
        throw LDataError(
            FormatText(Text(text::kCloudServerBadCertificate), {FromPath(file), SslErrorText()}));
    }
}

}  // namespace

std::unique_ptr<WireFactory> MakeWireFactory(const std::filesystem::path& certificate,
                                             const std::filesystem::path& key) {
    if (certificate.empty() && key.empty()) {
        return std::make_unique<PlainWires>();
    }
    ERR_clear_error();
    SslContext context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    Require(context != nullptr, certificate);
    SSL_CTX_set_min_proto_version(context.get(), TLS1_2_VERSION);
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    // Otherwise the library asks for the password of a protected key on the terminal.
    SSL_CTX_set_default_passwd_cb(context.get(), [](char*, int, int, void*) { return 0; });
    Require(SSL_CTX_use_certificate_chain_file(context.get(), certificate.c_str()) == 1, certificate);
    Require(SSL_CTX_use_PrivateKey_file(context.get(), key.c_str(), SSL_FILETYPE_PEM) == 1, key);
    return std::make_unique<TlsWires>(std::move(context));
}

bool WaitForSocket(socket_t socket, bool forWriting, std::chrono::milliseconds time) {
    pollfd waited{socket, static_cast<short>(forWriting ? POLLOUT : POLLIN), 0};
    return ::poll(&waited, 1, static_cast<int>(time.count())) > 0;
}

void MakeNonBlocking(socket_t socket) {
    ::fcntl(socket, F_SETFL, ::fcntl(socket, F_GETFL) | O_NONBLOCK);
}

void SetListenerOptions(socket_t socket) {
    // SO_REUSEPORT, which the library would set, lets two servers share a port unnoticed.
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
}

BindFailure LastBindFailure() {
    return errno == EADDRINUSE                 ? BindFailure::InUse
           : errno == EACCES || errno == EPERM ? BindFailure::NotPermitted
                                               : BindFailure::NoSuchAddress;
}

void BlockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

SignalKeeper::SignalKeeper() : handler_(std::signal(SIGPIPE, SIG_IGN)) {}

void SignalKeeper::PutBack() const {
    std::signal(SIGPIPE, handler_);
}

}  // namespace orvex
