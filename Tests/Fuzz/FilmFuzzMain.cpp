#include "Fuzz/Films.h"
#include "TestSupport/TemporaryFolder.h"

#include <cstddef>
#include <cstdint>

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's own name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer's own name
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const zento::test::TemporaryFolder folder;
    static zento::FilmExports films(folder.path());
    films.exportAnything({reinterpret_cast<const char*>(data), size});
    return 0;
}
