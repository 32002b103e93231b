#include "tools/zunotrace/weblog.h"

#include "tools/zunotrace/logpage.h"

#include <utility> // Asio's headers lack it

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <chrono>
#include <deque>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <vector>

namespace ZUNO::Tools {

namespace net = boost::asio;
namespace http = boost::beast::http;
using tcp = net::ip::tcp;
using Error = boost::system::error_code;

namespace {

/// The entries that are kept, as browsers take them.
class Backlog {
public:
    void append(const TraceEntry& entry) {
        using namespace std::chrono;
        const auto time = duration_cast<milliseconds>(system_clock::now().time_since_epoch());
        const nlohmann::ordered_json json = {
            {"time", time.count()}, {"kind", entry.mKind}, {"text", entry.mText}};
        mEntries.push_back(
            "id: " + std::to_string(mFirst + mEntries.size()) + "\ndata: " +
            json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n\n");
        if (mEntries.size() > capacity) {
            mEntries.pop_front();
            ++mFirst;
        }
    }

    std::size_t end() const { return mFirst + mEntries.size(); }

    /// The entries from `next` on, a piece of them; `next` goes behind them.
    std::string take(std::size_t& next) const {
        constexpr std::size_t pieceSize = 65536;
        std::string piece;
        for (next = std::max(next, mFirst); next < end() && piece.size() < pieceSize; ++next)
            piece += mEntries[next - mFirst];
        return piece;
    }

private:
    static constexpr std::size_t capacity = 10000;

    std::deque<std::string> mEntries;
    std::size_t mFirst = 0; ///< the number of the first that is kept
};

/// One browser's connection: a request, and its answer, which may go on as the log grows.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    Connection(tcp::socket socket, const Backlog& backlog, unsigned short port)
        : mStream(std::move(socket)), mBacklog(backlog), mPort(port) {
        mParser.header_limit(16 * 1024);
        mParser.body_limit(0);
    }

    void start() {
        mStream.expires_after(std::chrono::seconds(10));
        http::async_read(mStream, mBuffer, mParser,
                         [self = shared_from_this()](Error error, std::size_t) {
                             if (!error)
                                 self->answer();
                         });
    }

    /// Sends on what the log has got since.
    void sendMore() {
        if (!mIsFollowing || mIsWriting || mNext == mBacklog.end())
            return;
        mPiece = mBacklog.take(mNext);
        write();
    }

    bool isBehind() const { return mIsFollowing && (mIsWriting || mNext != mBacklog.end()); }

private:
    bool isLocal() const {
        const std::string port = ':' + std::to_string(mPort);
        const auto host = mParser.get()[http::field::host];
        return host == "127.0.0.1" + port || host == "localhost" + port;
    }

    void answer() {
        const auto& request = mParser.get();
        if (!isLocal())
            respond(http::status::forbidden, "text/plain", "this log is for this machine alone\n");
        else if (request.method() != http::verb::get)
            respond(http::status::method_not_allowed, "text/plain", "only GET\n");
        else if (request.target() == "/")
            respond(http::status::ok, "text/html; charset=utf-8", logPage);
        else if (request.target() == "/events")
            follow();
        else
            respond(http::status::not_found, "text/plain", "not found\n");
    }

    void respond(http::status status, const char* type, const std::string& body) {
        mResponse = {status, 11};
        mResponse.set(http::field::content_type, type);
        mResponse.set(http::field::cache_control, "no-store");
        mResponse.set("Content-Security-Policy",
                      "default-src 'self' 'unsafe-inline'; img-src data:; frame-ancestors 'none'");
        mResponse.keep_alive(false);
        mResponse.body() = body;
        mResponse.prepare_payload();
        http::async_write(mStream, mResponse, [self = shared_from_this()](Error, std::size_t) {
            Error ignored;
            self->mStream.socket().shutdown(tcp::socket::shutdown_send, ignored);
        });
    }

    /// Begins with what is kept, or behind what a browser that comes again has had.
    void follow() {
        const auto last = mParser.get()["Last-Event-ID"];
        if (!last.empty() && std::ranges::all_of(last, [](char c) { return c >= '0' && c <= '9'; }))
            mNext = std::min(
                static_cast<std::size_t>(std::strtoull(std::string(last).c_str(), nullptr, 10)) + 1,
                mBacklog.end());
        mPiece = "HTTP/1.1 200 OK\r\nContent-Type: text/event-stream\r\n"
                 "Cache-Control: no-store\r\nConnection: close\r\n\r\n";
        mIsFollowing = true;
        write();
        // nothing more is asked for: when there is something to read, the browser has gone
        mStream.socket().async_wait(tcp::socket::wait_read, [self = shared_from_this()](Error) {
            self->mIsFollowing = false;
            self->mStream.close();
        });
    }

    /// Sends the piece, and then what has come meanwhile.
    void write() {
        mIsWriting = true;
        mStream.expires_after(std::chrono::seconds(30)); // for a browser that takes nothing
        net::async_write(mStream, net::buffer(mPiece),
                         [self = shared_from_this()](Error error, std::size_t) {
                             self->mIsWriting = false;
                             self->mStream.expires_never();
                             if (error)
                                 self->mIsFollowing = false;
                             self->sendMore();
                         });
    }

    boost::beast::tcp_stream mStream;
    const Backlog& mBacklog;
    unsigned short mPort;
    boost::beast::flat_buffer mBuffer;
    http::request_parser<http::string_body> mParser;
    http::response<http::string_body> mResponse;
    std::string mPiece;
    std::size_t mNext = 0; ///< the entry to send next
    bool mIsFollowing = false;
    bool mIsWriting = false;
};

} // namespace

class WebLog::Implementation {
public:
    explicit Implementation(unsigned short port) : mAcceptor(mContext) {
        const tcp::endpoint place(net::ip::address_v4::loopback(), port);
        Error error;
        mAcceptor.open(place.protocol(), error);
#ifdef ZUNO_PORTS_REST
        // where a port rests for a while after its last connection, it may be taken again at once
        if (!error)
            mAcceptor.set_option(net::socket_base::reuse_address(true), error);
#endif
        if (!error)
            mAcceptor.bind(place, error);
        if (!error)
            mAcceptor.listen(net::socket_base::max_listen_connections, error);
        if (error)
            throw std::runtime_error("port " + std::to_string(port) + " can't be listened on: " +
                                     error.message() + "; --port takes another");
        mPort = mAcceptor.local_endpoint().port();
        accept();
    }

    unsigned short port() const {
        return mPort;
    }

    void append(const TraceEntry& entry) {
        mBacklog.append(entry);
        for (const auto& weak : mConnections)
            if (const auto connection = weak.lock())
                connection->sendMore();
    }

    void serve() {
        mContext.poll();
    }

    bool isBehind() const {
        return std::ranges::any_of(mConnections, [](const auto& weak) {
            const auto connection = weak.lock();
            return connection != nullptr && connection->isBehind();
        });
    }

    void finish() {
        using namespace std::chrono_literals;
        const auto end = std::chrono::steady_clock::now() + 1s;
        while (isBehind() && std::chrono::steady_clock::now() < end)
            mContext.run_for(10ms);
    }

private:
    void accept() {
        mAcceptor.async_accept([this](Error error, tcp::socket socket) {
            if (!error)
                admit(std::move(socket));
            if (mAcceptor.is_open())
                accept();
        });
    }

    void admit(tcp::socket socket) {
        std::erase_if(mConnections, [](const auto& weak) { return weak.expired(); });
        constexpr std::size_t most = 64;
        if (mConnections.size() >= most)
            return; // closes the socket
        const auto connection = std::make_shared<Connection>(std::move(socket), mBacklog, mPort);
        mConnections.push_back(connection);
        connection->start();
    }

    Backlog mBacklog; ///< outlives the connections, which the context holds
    std::vector<std::weak_ptr<Connection>> mConnections;
    net::io_context mContext;
    tcp::acceptor mAcceptor;
    unsigned short mPort = 0;
};

WebLog::WebLog(unsigned short port) : mImplementation(std::make_unique<Implementation>(port)) {}
WebLog::~WebLog() = default;

std::string WebLog::address() const {
    return "http://127.0.0.1:" + std::to_string(mImplementation->port()) + '/';
}
void WebLog::append(const TraceEntry& entry) {
    mImplementation->append(entry);
}
void WebLog::serve() {
    mImplementation->serve();
}
void WebLog::finish() {
    mImplementation->finish();
}

} // namespace ZUNO::Tools
