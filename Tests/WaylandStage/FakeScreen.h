#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zento::test {

/// A desktop's stream of pictures in a form and a memory of the test's choice.
///
/// Memory of a graphics card is ordinary memory here that says it is a card's: it is negotiated,
/// handed over and mapped in the same way.
///
/// Threading: one thread.
class FakeScreen {
public:
    enum class Memory : unsigned char { Ordinary, OfCard };
    struct Form {
        std::uint32_t format = 0; // a `spa_video_format`
        int width = 0;
        int height = 0;
        int bytes = 4; // of a pixel
        Memory memory = Memory::Ordinary;
    };

    /// Returns when the service has the stream.
    explicit FakeScreen(const Form& form);
    ~FakeScreen();

    std::uint32_t node() const;

    struct Chunk {
        std::uint32_t offset = 0;
        std::uint32_t size = 0;
        std::int32_t stride = 0;
    };

    /// Hands a buffer over. False while nobody looks or no buffer is free.
    bool show(const std::vector<std::uint8_t>& bytes, const Chunk& chunk);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zento::test
