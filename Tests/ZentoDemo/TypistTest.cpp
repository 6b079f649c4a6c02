#include "Zento/Demo/Typist.h"

#include "Zento/Demo/DemoActor.h"
#include "Zento/Demo/DemoStage.h"
#include "Zento/Demo/Waiting.h"
#include "Zento/Demo/XConnection.h"
#include "ZentoCore/Error.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <thread>

namespace zento {
namespace {

const ElementQuery kNotes{.application = "l3afpad", .window = "", .role = "text"};

class TypistTest : public testing::Test {
protected:
    TypistTest()
    {
        m_actor.perform(ClickStep{kNotes}, {});
        m_typist.press({"Control_L", "a"}, {});
    }

    void expectNotes(const std::string& text) const
    {
        const auto isThere = [&] { return m_finder.textOf(kNotes) == text; };
        EXPECT_NO_THROW(waitUntil(isThere, 10, "other text", {}))
            << m_finder.textOf(kNotes).value_or("nothing");
    }

    bool areAllKeysUp() const
    {
        const XConnection connection(m_stage.display());
        const auto keys = own(
            xcb_query_keymap_reply(connection.get(), xcb_query_keymap(connection.get()), nullptr));
        return keys && std::ranges::all_of(keys->keys, [](auto byte) { return byte == 0; });
    }

    DemoStage m_stage;
    DemoActor m_actor{m_stage.display(), m_stage.accessibilityAddress()};
    ElementFinder m_finder{m_stage.accessibilityAddress()};
    Typist m_typist{m_stage.display(), 11};
};

TEST_F(TypistTest, everyPrintableCharacterOfAsciiTypesItself)
{
    std::string all;
    for (char character = ' '; character <= '~'; ++character) {
        all.push_back(character);
    }
    all += "\nsecond\tline aa";
    m_typist.type(all, {});
    expectNotes(all);
    EXPECT_TRUE(areAllKeysUp());
}

TEST_F(TypistTest, typesNothingOfATextItCannotType)
{
    m_typist.type("before", {});
    try {
        m_typist.type("abc\u6f22", {});
        FAIL() << "typed";
    } catch (const Error& error) {
        EXPECT_EQ(error.code(), ErrorCode::kUntypeable);
    }
    m_typist.type(" after", {});
    expectNotes("before after");
}

TEST_F(TypistTest, stopsInTheMiddleWithEveryKeyReleased)
{
    const std::string text(300, 'X'); // half a minute's work
    std::stop_source stop;
    std::jthread typing([&] { m_typist.type(text, stop.get_token()); });
    const auto hasBegun = [&] { return m_finder.textOf(kNotes).value_or("").starts_with("XX"); };
    EXPECT_NO_THROW(waitUntil(hasBegun, 30, "nothing was typed", {}));
    stop.request_stop();
    typing.join();
    EXPECT_LT(m_finder.textOf(kNotes).value_or(text).size(), text.size());
    EXPECT_TRUE(areAllKeysUp());
}

TEST(TypingGap, staysWithinWhatFingersDoAndVaries)
{
    Random random(5);
    std::vector<double> gaps;
    const std::u32string text = U"Ask Ida, well, aa bb.\nNext: llama";
    for (std::size_t i = 1; i < text.size(); ++i) {
        gaps.push_back(typingGap(text[i - 1], text[i], random));
    }
    const auto [least, most] = std::ranges::minmax(gaps);
    EXPECT_GE(least, 0.06);
    EXPECT_LE(most, 0.18);
    EXPECT_GT(most - least, 0.06);
}

} // namespace
} // namespace zento
