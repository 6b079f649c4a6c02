#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zento::test {

/// A real server on a free port of the loopback. Each connection is answered on a thread of its own
/// with exactly the bytes that the answer writes, and closed.
class HttpServer {
public:
    /// A connection after its request was read whole. `send` gives false once the other end is
    /// gone.
    class Connection {
    public:
        Connection(int socket, std::string request)
            : m_socket(socket)
            , m_request(std::move(request))
        {
        }
        const std::string& request() const { return m_request; } // first line, headers, body
        bool send(std::string_view bytes) const;
        /// Until the other end hangs up.
        void waitForEnd() const;

    private:
        int m_socket;
        std::string m_request;
    };
    using Answer = std::function<void(const Connection&)>;

    explicit HttpServer(Answer answer);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::string url() const; // "http://127.0.0.1:PORT"
    std::vector<std::string> requests() const;

private:
    void serve();
    void handle(int socket);

    Answer m_answer;
    int m_listener = -1;
    int m_port = 0;
    mutable std::mutex m_mutex; // guards the requests
    std::vector<std::string> m_requests;
    std::vector<std::jthread> m_connections; // of the serving thread
    std::jthread m_serving;
};

/// A whole answer: status line, headers, body.
std::string
httpAnswer(const std::string& status, const std::string& contentType, const std::string& body);

} // namespace zento::test
