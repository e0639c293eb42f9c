#include "host/cloudserver/HttpServer.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kThreads = 16;
constexpr int kMostWaiting = 64;
constexpr std::size_t kMostHead = 32 << 10;
constexpr auto kHeadTime = 10s;
constexpr auto kIdleTime = 5s;
constexpr auto kShortIdleTime = 250ms;  // of a new connection, while others wait
constexpr auto kStallTime = 30s;        // of a client that does not take its answer
constexpr auto kSlice = 20ms;           // after which a waiting connection looks whether the server ends

/// One connection, as httplib reads and writes it.
class Connection : public httplib::Stream {
  public:
    Connection(socket_t socket, std::unique_ptr<Wire> wire, const std::atomic<bool>& stopping)
        : socket_(socket), wire_(std::move(wire)), stopping_(stopping) {}

    /// Waits for the first byte of a request; false if none comes in time, which is short while others wait.
    bool WaitForRequest(const std::atomic<int>& waiting) {
        headLeft_ = kMostHead;
        const auto begin = Clock::now();
        const auto patience = isUsed_ ? kSlice : kShortIdleTime;
        headEnd_ = begin + kIdleTime;
        while (position_ == size_) {
            const auto now = Clock::now();
            if (stopping_ || now >= headEnd_ || (waiting > 0 && now >= begin + patience)) {
                return false;
            }
            if (WaitForSocket(socket_, false, kSlice) && !Fill()) {
                return false;
            }
        }
        isUsed_ = true;
        headEnd_ = Clock::now() + kHeadTime;
        return true;
    }

    bool is_readable() const override { return !stopping_; }
    bool is_writable() const override { return !stopping_; }

    ssize_t read(char* data, std::size_t size) override {
        if (position_ == size_ && !Fill()) {
            return Wire::kFailed;
        }
        const std::size_t count = std::min({size, size_ - position_, headLeft_});
        std::copy_n(buffer_.data() + position_, count, data);
        position_ += count;
        headLeft_ -= count;
        return count > 0 ? static_cast<ssize_t>(count) : Wire::kFailed;
    }

    ssize_t write(const char* data, std::size_t size) override {
        std::size_t written = 0;
        while (written < size) {
            const ssize_t count = Transfer([&] { return wire_->Write(data + written, size - written); },
                                           Clock::now() + kStallTime);
            if (count <= 0) {
                return Wire::kFailed;
            }
            written += static_cast<std::size_t>(count);
        }
        return static_cast<ssize_t>(written);
    }

    // Nobody asks who the client is.
    void get_remote_ip_and_port(std::string&, int&) const override {}
    void get_local_ip_and_port(std::string&, int&) const override {}
    socket_t socket() const override { return socket_; }

  private:
    bool Fill() {
        position_ = size_ = 0;
        const ssize_t count = Transfer([&] { return wire_->Read(buffer_.data(), buffer_.size()); }, headEnd_);
        size_ = count > 0 ? static_cast<std::size_t>(count) : 0;
        return count > 0;
    }

    ssize_t Transfer(const std::function<ssize_t()>& call, Clock::time_point end) {
        while (!stopping_ && Clock::now() < end) {
            const ssize_t count = call();
            if (count >= Wire::kFailed) {
                return count;
            }
            WaitForSocket(socket_, count == Wire::kWantsWrite, kSlice);
        }
        return Wire::kFailed;
    }

    const socket_t socket_;
    const std::unique_ptr<Wire> wire_;
    const std::atomic<bool>& stopping_;
    std::array<char, 4096> buffer_;
    std::size_t position_ = 0, size_ = 0;
    std::size_t headLeft_ = 0;
    bool isUsed_ = false;  ///< has had a request
    Clock::time_point headEnd_;
};

/// A fixed number of threads. Adding waits while many connections wait already, so that the system refuses
/// more.
class BoundedQueue : public httplib::TaskQueue {
  public:
    BoundedQueue(std::atomic<int>& waiting, const std::atomic<bool>& stopping)
        : waiting_(waiting), stopping_(stopping) {
        for (std::size_t i = 0; i < kThreads; ++i) {
            threads_.emplace_back([this] { Work(); });
        }
    }

    void enqueue(std::function<void()> task) override {
        std::unique_lock lock(mutex_);
        while (waiting_ >= kMostWaiting && !stopping_) {
            changed_.wait_for(lock, kSlice);
        }
        tasks_.push_back(std::move(task));
        ++waiting_;
        changed_.notify_all();
    }

    void shutdown() override {
        {
            const std::lock_guard lock(mutex_);
            ended_ = true;
        }
        changed_.notify_all();
        for (std::thread& thread : threads_) {
            thread.join();
        }
    }

  private:
    void Work() {
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [this] { return ended_ || !tasks_.empty(); });
            if (tasks_.empty()) {
                return;
            }
            const std::function<void()> task = std::move(tasks_.front());
            tasks_.pop_front();
            --waiting_;
            lock.unlock();
            task();
            lock.lock();
        }
    }

    std::atomic<int>& waiting_;
    const std::atomic<bool>& stopping_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> tasks_;
    bool ended_ = false;
    std::vector<std::thread> threads_;
};

/// Takes from a request what the library would act upon by itself; true if it is the connection's last.
bool PrepareRequest(httplib::Request& request) {
    // Ranges are answered here, and nothing is compressed: lengths and offsets are those of the file.
    request.ranges.clear();
    request.headers.erase("Accept-Encoding");
    const bool hasBody = request.has_header("Content-Length") || request.has_header("Transfer-Encoding");
    const bool isLast = hasBody || (request.method != "GET" && request.method != "HEAD");
    if (isLast) {  // its body is not read, and must not be taken for the next request
        request.headers.erase("Connection");
        request.headers.emplace("Connection", "close");
    }
    return isLast;
}

[[noreturn]] void ThrowBindFailure(const std::string& address, int port) {
    const BindFailure failure = LastBindFailure();
    const StringId text = failure == BindFailure::InUse          ? text::kCloudServerPortInUse
                          : failure == BindFailure::NotPermitted ? text::kCloudServerPortNotPermitted
                                                                 : text::kCloudServerNoSuchAddress;
    throw LDataError(FormatText(Text(text), {FromUtf8(address), port}));
}

}  // namespace

HttpServer::HttpServer(std::unique_ptr<WireFactory> wires, Handler answer) : wires_(std::move(wires)) {
    PutBack();
    set_socket_options(SetListenerOptions);
    set_keep_alive_max_count(1000);  // as it is told to clients
    set_tcp_nodelay(true);           // head and body are sent apart
    set_pre_routing_handler([answer = std::move(answer)](const auto& request, auto& response) {
        answer(request, response);
        return HandlerResponse::Handled;
    });
    new_task_queue = [this] { return new BoundedQueue(waiting_, stopping_); };
}

HttpServer::~HttpServer() {
    Stop();
}

int HttpServer::Start(const std::string& address, int port) {
    const int bound = port == 0 ? bind_to_any_port(address) : bind_to_port(address, port) ? port : -1;
    if (bound < 0) {
        ThrowBindFailure(address, port);
    }
    // The library's own is 5, and a client that finds it full tries again only after a second.
    ::listen(svr_sock_, kMostWaiting);
    thread_ = std::thread([this] {
        BlockSignals();
        listen_after_bind();
        ended_ = true;
    });
    // Before that, the library does not hear that it is to stop.
    while (!is_running() && !ended_) {
        std::this_thread::yield();
    }
    return bound;
}

void HttpServer::Stop() {
    stopping_ = true;
    if (thread_.joinable()) {
        stop();
        thread_.join();
    }
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    MakeNonBlocking(socket);
    {
        Connection connection(socket, wires_->Make(socket), stopping_);
        bool goesOn = true;
        while (goesOn && connection.WaitForRequest(waiting_)) {
            bool isClosed = false;
            bool isLast = true;  // also after a head that could not be read: the next one cannot be found
            goesOn = process_request(connection, false, isClosed,
                                     [&](httplib::Request& request) { isLast = PrepareRequest(request); }) &&
                     !isClosed && !isLast;
        }
    }
    httplib::detail::close_socket(socket);
    return true;
}

}  // namespace orvex
