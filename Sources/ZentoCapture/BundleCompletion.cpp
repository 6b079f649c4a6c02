#include "ZentoCapture/BundleCompletion.h"

#include "ZentoCapture/Journal.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/FileDescriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace zento {

namespace {

void sync(const std::filesystem::path& path)
{
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    // Some filesystems know no such thing.
    if (file.get() < 0 || (::fsync(file.get()) != 0 && errno != EINVAL)) {
        throw systemError("cannot write", path.string(), errno);
    }
}

} // namespace

void complete(const SessionBundle& bundle)
{
    bundle.writeMetadata();
    sync(bundle.metaURL());
    sync(bundle.eventsURL());
    sync(bundle.url);
}

void removeJournal(const std::filesystem::path& bundle) noexcept
{
    std::error_code ignored;
    std::filesystem::remove(journalURL(bundle), ignored);
}

} // namespace zento
