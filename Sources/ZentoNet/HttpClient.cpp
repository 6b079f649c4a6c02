#include "ZentoNet/HttpClient.h"

#include "ZentoCore/Error.h"

#include <curl/curl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace zento {

namespace {

struct Release {
    void operator()(CURL* transfer) const { curl_easy_cleanup(transfer); }
    void operator()(CURLU* url) const { curl_url_cleanup(url); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    void operator()(char* text) const { curl_free(text); }
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct ReleaseTransfers { // the library's handles of one and of many are the same type
    void operator()(CURLM* transfers) const { curl_multi_cleanup(transfers); }
};

template <typename Object>
using Handle = std::unique_ptr<Object, Release>;

void startLibrary()
{
    struct Library {
        Library() { curl_global_init(CURL_GLOBAL_DEFAULT); }
        ~Library() { curl_global_cleanup(); }
        Library(const Library&) = delete;
        Library& operator=(const Library&) = delete;
    };
    static const Library kLibrary;
}

std::string hostOf(const std::string& url)
{
    const Handle<CURLU> parsed(curl_url());
    char* host = nullptr;
    if (curl_url_set(parsed.get(), CURLUPART_URL, url.c_str(), 0) == CURLUE_OK
        && curl_url_get(parsed.get(), CURLUPART_HOST, &host, 0) == CURLUE_OK)
        return Handle<char>(host).get();
    return url;
}

/// Where a body goes. False stops the transfer.
using Sink = std::function<bool(int status, std::string_view bytes)>;

using ProgressCallback = std::function<void(const HttpProgress&)>;

/// What the library calls back with.
struct Transfer {
    CURL* handle = nullptr;
    const Sink* sink = nullptr;
    const ProgressCallback* onProgress = nullptr;
    std::size_t received = 0;
    std::size_t most = 0;
};

std::size_t takeBytes(const char* data, std::size_t size, std::size_t count, void* user)
{
    auto& transfer = *static_cast<Transfer*>(user);
    const std::size_t length = size * count;
    transfer.received += length;
    long status = 0;
    curl_easy_getinfo(transfer.handle, CURLINFO_RESPONSE_CODE, &status);
    const bool wantsMore = transfer.received <= transfer.most
                           && (*transfer.sink)(static_cast<int>(status), {data, length});
    return wantsMore ? length : 0;
}

int tellProgress(void* user, curl_off_t total, curl_off_t received, curl_off_t, curl_off_t)
{
    const auto& transfer = *static_cast<const Transfer*>(user);
    if (received > 0 && *transfer.onProgress)
        (*transfer.onProgress)(
            {static_cast<std::uint64_t>(received), static_cast<std::uint64_t>(total)});
    return 0;
}

Handle<curl_slist> headerList(const HttpRequest& request)
{
    Handle<curl_slist> list;
    for (const auto& [name, value] : request.headers) {
        const std::string line = name + ": " + value;
        list.reset(curl_slist_append(list.release(), line.c_str()));
    }
    return list;
}

void configure(CURL* handle, const HttpRequest& request, curl_slist* headers, Transfer& transfer)
{
    const auto set = [handle](CURLoption option, auto value) {
        curl_easy_setopt(handle, option, value);
    };
    set(CURLOPT_URL, request.url.c_str());
    set(CURLOPT_NOSIGNAL, 1L); // other threads live here
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    const bool isSecure = request.url.starts_with("https:");
    set(CURLOPT_REDIR_PROTOCOLS_STR, isSecure ? "https" : "http,https");
    set(CURLOPT_FOLLOWLOCATION, request.redirects == Redirects::Follow ? 1L : 0L);
    set(CURLOPT_MAXREDIRS, 5L);
    if (request.proxies == Proxies::None)
        set(CURLOPT_NOPROXY, "*");
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(request.timeout.count()));
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(request.patience.count()));
    set(CURLOPT_CONNECTTIMEOUT, static_cast<long>(request.patience.count()));
    set(CURLOPT_HTTPHEADER, headers);
    if (!request.body.empty()) {
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        set(CURLOPT_POSTFIELDS, request.body.c_str());
    }
    set(CURLOPT_WRITEFUNCTION, &takeBytes);
    set(CURLOPT_WRITEDATA, static_cast<void*>(&transfer));
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, &tellProgress);
    set(CURLOPT_XFERINFODATA, static_cast<void*>(&transfer));
}

Error failure(const std::string& host, std::string_view reason)
{
    return {ErrorCode::kNetworkFailed, "no answer from " + host + ": " + std::string(reason)};
}

/// One request and its answer, which comes in steps.
class Exchange {
public:
    Exchange(
        const HttpRequest& request,
        std::uint64_t continueFrom,
        const Sink& sink,
        const ProgressCallback& onProgress)
        : m_host((startLibrary(), hostOf(request.url)))
        , m_handle(curl_easy_init())
        , m_transfer{m_handle.get(), &sink, &onProgress, 0, request.mostBytes}
        , m_headers(headerList(request))
        , m_transfers(curl_multi_init())
    {
        if (!m_handle || !m_transfers)
            throw failure(m_host, "out of memory");
        configure(m_handle.get(), request, m_headers.get(), m_transfer);
        // Not as the library's own resumption, which refuses a server that then sends the whole.
        const std::string range = std::to_string(continueFrom) + "-";
        if (continueFrom > 0)
            curl_easy_setopt(m_handle.get(), CURLOPT_RANGE, range.c_str());
        curl_multi_add_handle(m_transfers.get(), m_handle.get());
    }
    ~Exchange() { curl_multi_remove_handle(m_transfers.get(), m_handle.get()); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    /// Hands on what has come, after waiting for some. False once the exchange is over.
    bool step(const std::stop_token& stop)
    {
        constexpr int kLookEvery = 50; // milliseconds
        if (stop.stop_requested())
            throw Error(ErrorCode::kCancelled, "the exchange with " + m_host + " was cancelled");
        const std::size_t before = m_transfer.received;
        int running = 0;
        curl_multi_perform(m_transfers.get(), &running);
        int left = 0;
        while (const CURLMsg* message = curl_multi_info_read(m_transfers.get(), &left)) {
            if (message->msg == CURLMSG_DONE)
                m_verdict = message->data.result;
        }
        if (running > 0 && m_transfer.received == before)
            curl_multi_poll(m_transfers.get(), nullptr, 0, kLookEvery, nullptr);
        return running > 0;
    }

    /// Once it is over: throws for what went wrong.
    void requireSuccess() const
    {
        if (m_verdict == CURLE_WRITE_ERROR && m_transfer.received > m_transfer.most)
            throw failure(
                m_host, "it sent more than " + std::to_string(m_transfer.most) + " bytes");
        if (m_verdict != CURLE_OK)
            throw failure(m_host, curl_easy_strerror(m_verdict));
    }

    const std::string& host() const { return m_host; }
    int status() const
    {
        long status = 0;
        curl_easy_getinfo(m_handle.get(), CURLINFO_RESPONSE_CODE, &status);
        return static_cast<int>(status);
    }
    std::string contentType() const
    {
        const char* type = nullptr;
        curl_easy_getinfo(m_handle.get(), CURLINFO_CONTENT_TYPE, &type);
        return type != nullptr ? type : "";
    }

private:
    std::string m_host;
    Handle<CURL> m_handle;
    Transfer m_transfer;
    Handle<curl_slist> m_headers;
    std::unique_ptr<CURLM, ReleaseTransfers> m_transfers;
    CURLcode m_verdict = CURLE_OK;
};

HttpResponse exchange(
    const HttpRequest& request,
    std::uint64_t continueFrom,
    const Sink& sink,
    const ProgressCallback& onProgress,
    const std::stop_token& stop)
{
    Exchange exchange(request, continueFrom, sink, onProgress);
    while (exchange.step(stop)) {
    }
    exchange.requireSuccess();
    return {.status = exchange.status(), .contentType = exchange.contentType(), .body = {}};
}

bool isSuccess(int status)
{
    return status >= 200 && status < 300;
}

} // namespace

HttpResponse fetch(const HttpRequest& request, const std::stop_token& stop)
{
    std::string body;
    const Sink sink = [&body](int, std::string_view bytes) {
        body += bytes;
        return true;
    };
    HttpResponse response = exchange(request, 0, sink, {}, stop);
    response.body = std::move(body);
    return response;
}

HttpResponse download(
    const HttpRequest& request,
    const std::filesystem::path& to,
    std::uint64_t continueFrom,
    const std::function<void(const HttpProgress&)>& onProgress,
    const std::stop_token& stop)
{
    constexpr int kPartial = 206;
    const Handle<std::FILE> file(std::fopen(to.c_str(), continueFrom > 0 ? "r+b" : "wb"));
    if (!file)
        throw systemError("Cannot write", to.string(), errno);
    bool isPlaced = false;
    std::optional<int> refusal; // of the system
    const auto write = [&](int status, std::string_view bytes) {
        if (!isPlaced) {
            const long start = status == kPartial ? static_cast<long>(continueFrom) : 0;
            isPlaced = std::fseek(file.get(), start, SEEK_SET) == 0
                       && ftruncate(fileno(file.get()), start) == 0;
        }
        return isPlaced && std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
    };
    const Sink sink = [&](int status, std::string_view bytes) {
        if (!isSuccess(status))
            return true; // what the server says of its refusal
        if (!write(status, bytes))
            refusal = errno;
        return !refusal;
    };
    HttpResponse response;
    try {
        response = exchange(request, continueFrom, sink, onProgress, stop);
    } catch (const Error&) {
        if (refusal)
            throw systemError("Cannot write", to.string(), *refusal);
        throw;
    }
    if (std::fflush(file.get()) != 0)
        throw systemError("Cannot write", to.string(), errno);
    return response;
}

struct HttpStream::State {
    State(const HttpRequest& request, std::stop_token itsStop)
        : stop(std::move(itsStop))
        , exchange(request, 0, sink, progress)
    {
    }

    std::stop_token stop;
    std::string waiting;   // bytes
    std::size_t taken = 0; // of those
    bool isOver = false;
    Sink sink = [this](int status, std::string_view bytes) {
        if (isSuccess(status))
            waiting += bytes;
        return true;
    };
    ProgressCallback progress;
    Exchange exchange;
};

HttpStream::HttpStream(const HttpRequest& request, std::stop_token stop)
    : m_state(std::make_unique<State>(request, std::move(stop)))
{
}

HttpStream::~HttpStream() = default;

std::size_t HttpStream::read(std::span<char> into)
{
    State& state = *m_state;
    if (state.taken == state.waiting.size()) {
        state.waiting.clear();
        state.taken = 0;
    }
    while (state.waiting.empty() && !state.isOver) {
        if (state.exchange.step(state.stop))
            continue;
        state.isOver = true;
        state.exchange.requireSuccess();
        if (!isSuccess(state.exchange.status()))
            throw failure(
                state.exchange.host(),
                "it answered with status " + std::to_string(state.exchange.status()));
    }
    const std::size_t count = std::min(into.size(), state.waiting.size() - state.taken);
    std::copy_n(state.waiting.data() + state.taken, count, into.data());
    state.taken += count;
    return count;
}

std::string percentEncoded(std::string_view text)
{
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (kPlain.find(character) != std::string_view::npos)
            result += character;
        else
            result += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return result;
}

} // namespace zento
