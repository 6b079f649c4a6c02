#include "ZentoCapture/Backends/CardMemory.h"

#include <linux/dma-buf.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

// The library's macros cast as C does.
#pragma GCC diagnostic ignored "-Wold-style-cast"

namespace zento {

CardMemory::CardMemory(int file, std::size_t offset, std::size_t bytes)
    : m_file(file)
{
    const off_t end = ::lseek(file, 0, SEEK_END);
    if (end <= 0 || offset >= static_cast<std::size_t>(end)) {
        return;
    }
    const std::size_t most = static_cast<std::size_t>(end) - offset;
    const std::size_t length = bytes == 0 ? most : std::min(bytes, most);
    void* const memory = ::mmap(nullptr, offset + length, PROT_READ, MAP_SHARED, file, 0);
    if (memory == MAP_FAILED) {
        return;
    }
    m_memory = memory;
    m_length = offset + length;
    m_bytes = {static_cast<const std::uint8_t*>(memory) + offset, length};
}

CardMemory::~CardMemory()
{
    if (m_memory != nullptr) {
        ::munmap(m_memory, m_length);
    }
}

void CardMemory::announce(std::uint64_t flags) const
{
    dma_buf_sync sync{};
    sync.flags = DMA_BUF_SYNC_READ | flags;
    while (::ioctl(m_file, DMA_BUF_IOCTL_SYNC, &sync) < 0 && (errno == EINTR || errno == EAGAIN)) {
    }
}

CardMemory::Reading::Reading(const CardMemory& memory)
    : m_memory(memory)
{
    m_memory.announce(DMA_BUF_SYNC_START);
}

CardMemory::Reading::~Reading()
{
    m_memory.announce(DMA_BUF_SYNC_END);
}

} // namespace zento
