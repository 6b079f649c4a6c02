#pragma once

#include "ZentoMedia/VideoFrame.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <stop_token>

namespace zento {

/// Makes sure that a recording has its "proxy.mp4": a small copy of "screen.mov" in which every
/// picture is a key frame, with the recording's own times. It is a cache: deleting it costs a
/// rebuild and nothing else reads it.
///
/// The proxy is made under a name of its own, "proxy-….tmp.mp4", and moved to its place when it is
/// complete, so that it is whole or not there, also after a crash. What a crash leaves is cleared
/// by the next build once it is an hour old.
///
/// Threading: every operation from any thread. Each build has two threads of its own.
class ProxyStore {
public:
    using Progress = std::function<void(double share)>; // [0, 1]

    ProxyStore();
    ~ProxyStore(); // cancels the builds; nobody may be waiting any more
    ProxyStore(const ProxyStore&) = delete;
    ProxyStore& operator=(const ProxyStore&) = delete;

    /// The bundle's proxy, built first if there is none, or one that is torn or of another
    /// recording. Blocks meanwhile.
    ///
    /// Callers for one bundle share one build; `onProgress`, which may be empty, is called on this
    /// thread, and only for the caller who began it. A build that its last caller has left is
    /// cancelled and leaves nothing.
    ///
    /// Throws `Error`: the code `kCancelled` at once when `stop` is requested;
    /// `kProxyNoVideoTrack`, `kProxyNotStarted`, `kProxyNotFinished`, or the system's error with
    /// the file.
    std::filesystem::path ensure(
        const std::filesystem::path& bundle,
        const Progress& onProgress = {},
        const std::stop_token& stop = {});

private:
    class Build;

    std::shared_ptr<Build> join(const std::filesystem::path& bundle, bool& isNew);
    void leave(const std::filesystem::path& bundle, const std::shared_ptr<Build>& build);

    std::mutex m_mutex; // guards what follows
    std::map<std::filesystem::path, std::shared_ptr<Build>> m_inflight;
};

/// The size of a master's proxy: at most 960 wide, even, never larger than the master.
VideoSize proxySize(VideoSize master);

/// Whether a proxy can be opened, has the size it should have and ends where its master does.
/// Where the master cannot be read nothing speaks against the proxy. Blocks on files.
bool isProxyOf(const std::filesystem::path& proxy, const std::filesystem::path& master);

} // namespace zento
