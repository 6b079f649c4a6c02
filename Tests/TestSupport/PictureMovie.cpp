#include "TestSupport/PictureMovie.h"

#include "ZentoImaging/Convert.h"
#include "ZentoMedia/ProResWriter.h"

#include <thread>
#include <utility>

namespace zento::test {

void writePictures(const std::filesystem::path& file, const std::vector<ShownPicture>& pictures)
{
    const Canvas& first = *pictures.front().picture;
    ProResWriter writer(file, first.width(), first.height());
    for (const auto& [time, canvas] : pictures) {
        auto slot = writer.acquire();
        for (; !slot; slot = writer.acquire())
            std::this_thread::yield();
        const Plane<const std::uint32_t> pixels = canvas->pixels();
        convert(
            {reinterpret_cast<const std::uint8_t*>(pixels.data),
             pixels.width,
             pixels.height,
             pixels.stride * 4},
            slot->planes());
        writer.submit(std::move(*slot), time);
    }
    writer.finish();
}

} // namespace zento::test
