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

/// What the library calls back with.
struct Transfer {
    CURL* handle = nullptr;
    const Sink* sink = nullptr;
    const std::function<void(const HttpProgress&)>* onProgress = nullptr;
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

/// The library's verdict once the exchange is over.
CURLcode run(CURL* handle, const std::string& host, const std::stop_token& stop)
{
    constexpr int kLookEvery = 50; // milliseconds
    const std::unique_ptr<CURLM, ReleaseTransfers> transfers(curl_multi_init());
    curl_multi_add_handle(transfers.get(), handle);
    CURLcode verdict = CURLE_OK;
    for (int running = 1; running > 0;) {
        if (stop.stop_requested()) {
            curl_multi_remove_handle(transfers.get(), handle);
            throw Error(ErrorCode::kCancelled, "the exchange with " + host + " was cancelled");
        }
        curl_multi_perform(transfers.get(), &running);
        int left = 0;
        while (const CURLMsg* message = curl_multi_info_read(transfers.get(), &left)) {
            if (message->msg == CURLMSG_DONE)
                verdict = message->data.result;
        }
        if (running > 0)
            curl_multi_poll(transfers.get(), nullptr, 0, kLookEvery, nullptr);
    }
    curl_multi_remove_handle(transfers.get(), handle);
    return verdict;
}

Error failure(const std::string& host, std::string_view reason)
{
    return {ErrorCode::kNetworkFailed, "no answer from " + host + ": " + std::string(reason)};
}

HttpResponse exchange(
    const HttpRequest& request,
    std::uint64_t continueFrom,
    const Sink& sink,
    const std::function<void(const HttpProgress&)>& onProgress,
    const std::stop_token& stop)
{
    startLibrary();
    const std::string host = hostOf(request.url);
    const Handle<CURL> handle(curl_easy_init());
    if (!handle)
        throw failure(host, "out of memory");
    Transfer transfer{handle.get(), &sink, &onProgress, 0, request.mostBytes};
    const Handle<curl_slist> headers = headerList(request);
    configure(handle.get(), request, headers.get(), transfer);
    // Not as the library's own resumption, which refuses a server that then sends the whole.
    const std::string range = std::to_string(continueFrom) + "-";
    if (continueFrom > 0)
        curl_easy_setopt(handle.get(), CURLOPT_RANGE, range.c_str());
    const CURLcode verdict = run(handle.get(), host, stop);
    if (verdict == CURLE_WRITE_ERROR && transfer.received > transfer.most)
        throw failure(host, "it sent more than " + std::to_string(transfer.most) + " bytes");
    HttpResponse response;
    long status = 0;
    curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    response.status = static_cast<int>(status);
    if (verdict != CURLE_OK)
        throw failure(host, curl_easy_strerror(verdict));
    const char* contentType = nullptr;
    curl_easy_getinfo(handle.get(), CURLINFO_CONTENT_TYPE, &contentType);
    response.contentType = contentType != nullptr ? contentType : "";
    return response;
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
