#pragma once

namespace zento {

/// A file descriptor that becomes readable, for good, once `wake` was called: how a thread that
/// waits in poll() is told to end.
///
/// Threading: safe.
class WakeFd {
public:
    WakeFd(); // throws `Error` when the process has no file descriptor left
    ~WakeFd();
    WakeFd(const WakeFd&) = delete;
    WakeFd& operator=(const WakeFd&) = delete;

    void wake() noexcept;
    bool isAwake() const;
    int fileDescriptor() const { return m_fileDescriptor; }

private:
    int m_fileDescriptor = -1;
};

} // namespace zento
