#include "Fuzz/Decoders.h"
#include "ZentoCore/FileIO.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace zento {
namespace {

TEST(Decoders, takeEverySeedAndEveryTornPartOfIt)
{
    int seeds = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZENTO_SEED_FOLDER)) {
        const std::string seed = readFile(entry.path());
        SCOPED_TRACE(entry.path());
        for (std::size_t length = 0; length <= seed.size(); ++length) {
            decodeAnything(std::string_view(seed).substr(0, length));
        }
        ++seeds;
    }
    EXPECT_GT(seeds, 8);
}

} // namespace
} // namespace zento
