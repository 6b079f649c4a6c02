#pragma once

#include <unistd.h>

#include <utility>

namespace zento {

/// An open file descriptor, closed at the end of its life. Negative: none.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    FileDescriptor(FileDescriptor&& other) noexcept
        : m_descriptor(other.release())
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        if (this != &other) {
            close();
            m_descriptor = other.release();
        }
        return *this;
    }
    ~FileDescriptor() { close(); }

    int get() const { return m_descriptor; }
    int release() { return std::exchange(m_descriptor, -1); }
    void close()
    {
        if (m_descriptor >= 0) {
            ::close(release());
        }
    }

private:
    int m_descriptor = -1;
};

} // namespace zento
