#include "TestSupport/HttpServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <stdexcept>

namespace zento::test {

namespace {

std::size_t bodyLength(const std::string& head)
{
    const std::string key = "Content-Length: ";
    const std::size_t place = head.find(key);
    std::size_t length = 0;
    if (place != std::string::npos)
        std::from_chars(head.data() + place + key.size(), head.data() + head.size(), length);
    return length;
}

std::string readRequest(int socket)
{
    std::string request;
    std::array<char, 4096> bytes{};
    for (std::size_t wanted = std::string::npos; request.size() < wanted;) {
        const ssize_t count = recv(socket, bytes.data(), bytes.size(), 0);
        if (count <= 0)
            break;
        request.append(bytes.data(), static_cast<std::size_t>(count));
        if (const std::size_t end = request.find("\r\n\r\n"); end != std::string::npos)
            wanted = end + 4 + bodyLength(request.substr(0, end));
    }
    return request;
}

} // namespace

bool HttpServer::Connection::send(std::string_view bytes) const
{
    while (!bytes.empty()) {
        const ssize_t count = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void HttpServer::Connection::waitForEnd() const
{
    char byte = 0;
    while (recv(m_socket, &byte, 1, 0) > 0) {
    }
}

HttpServer::HttpServer(Answer answer)
    : m_answer(std::move(answer))
    , m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    socklen_t length = sizeof(address);
    if (bind(m_listener, any, length) != 0 || listen(m_listener, 16) != 0
        || getsockname(m_listener, any, &length) != 0)
        throw std::runtime_error("no port for a server of the test");
    m_port = ntohs(address.sin_port);
    m_serving = std::jthread([this] { serve(); });
}

HttpServer::~HttpServer()
{
    shutdown(m_listener, SHUT_RDWR);
    m_serving.join();
    m_connections.clear();
    close(m_listener);
}

std::string HttpServer::url() const
{
    return "http://127.0.0.1:" + std::to_string(m_port);
}

std::vector<std::string> HttpServer::requests() const
{
    const std::scoped_lock lock(m_mutex);
    return m_requests;
}

void HttpServer::serve()
{
    for (;;) {
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0)
            return;
        m_connections.emplace_back([this, socket] { handle(socket); });
    }
}

void HttpServer::handle(int socket)
{
    std::string request = readRequest(socket);
    {
        const std::scoped_lock lock(m_mutex);
        m_requests.push_back(request);
    }
    m_answer(Connection(socket, std::move(request)));
    close(socket);
}

std::string
httpAnswer(const std::string& status, const std::string& contentType, const std::string& body)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + contentType + "\r\nContent-Length: "
           + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
}

} // namespace zento::test
