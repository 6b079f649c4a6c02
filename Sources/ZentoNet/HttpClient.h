#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zento {

enum class Redirects { Follow, Refuse };
enum class Proxies { AsConfigured, None };

struct HttpRequest {
    std::string url;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;                     // with one it is a POST
    std::chrono::milliseconds timeout{0}; // of the whole exchange; 0: none
    std::chrono::seconds patience{60};    // with so little as no byte a second
    Redirects redirects = Redirects::Follow;
    Proxies proxies = Proxies::AsConfigured;       // by the environment
    std::size_t mostBytes = std::size_t{16} << 20; // of a body; a longer one is a failure
};

struct HttpResponse {
    int status = 0;
    std::string contentType; // as the server writes it, empty if it does not
    std::string body;
};

/// Requests over HTTP and HTTPS, one connection each. Certificates are verified; a redirection
/// leads to HTTP or HTTPS only, and from HTTPS nowhere but to HTTPS.
///
/// Threading: any thread; a call blocks until it is done, `stop` ends it within a tenth of a
/// second. Errors: `Error` with `kNetworkFailed`, a sentence naming the host; `kCancelled`. Any
/// status is an answer, not an error.
HttpResponse fetch(const HttpRequest& request, const std::stop_token& stop = {});

struct HttpProgress {
    std::uint64_t received = 0;
    std::uint64_t total = 0; // 0: the server does not say
};

/// The same with the body into the file `to`, which is made or emptied; `continueFrom` bytes of it
/// are kept and not asked for again, if the server can do so. A body is written for a status of 200
/// to 299 only. `mostBytes` counts as well.
///
/// Throws also the system's error, naming the file.
HttpResponse download(
    const HttpRequest& request,
    const std::filesystem::path& to,
    std::uint64_t continueFrom = 0,
    const std::function<void(const HttpProgress&)>& onProgress = {},
    const std::stop_token& stop = {});

/// A body that is read as it comes: nothing more is asked of the server than what is wanted here.
///
/// Threading: used by one thread at a time; `stop` from any.
class HttpStream {
public:
    HttpStream(const HttpRequest& request, std::stop_token stop = {});
    ~HttpStream();
    HttpStream(const HttpStream&) = delete;
    HttpStream& operator=(const HttpStream&) = delete;

    /// Waits for the next bytes; how many came, 0 at the end. Throws as `fetch`, and
    /// `kNetworkFailed` for a status other than 200 to 299.
    std::size_t read(std::span<char> into);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// A text as a part of a URL's query.
std::string percentEncoded(std::string_view text);

} // namespace zento
