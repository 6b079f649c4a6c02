#include "ZentoCapture/ScreenWriter.h"

#include "ZentoImaging/Convert.h"
#include "ZentoMedia/ProResWriter.h"

#include <utility>

namespace zento {

namespace {

class ProResScreenWriter final : public ScreenWriter {
public:
    ProResScreenWriter(const std::filesystem::path& path, int width, int height)
        : m_writer(path, width, height)
    {
    }

    AppendResult append(const BgraView& picture, double time) override
    {
        auto slot = m_writer.acquire();
        if (!slot) {
            return AppendResult::NotReady;
        }
        convert(picture, slot->planes());
        m_writer.submit(*std::move(slot), time);
        return AppendResult::Appended;
    }

    bool hasFailed() const override { return m_writer.hasFailed(); }

    void finish() override { m_writer.finish(); }

private:
    ProResWriter m_writer;
};

} // namespace

std::unique_ptr<ScreenWriter>
makeScreenWriter(const std::filesystem::path& path, int width, int height)
{
    return std::make_unique<ProResScreenWriter>(path, width, height);
}

} // namespace zento
