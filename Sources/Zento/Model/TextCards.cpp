#include "Zento/Model/TextCards.h"

#include "ZentoCore/Text.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace zento {

namespace {

constexpr double kEndCardExtra = 0.2; // seconds: what is read last stays a little longer

std::string firstNonEmpty(std::initializer_list<std::string_view> texts)
{
    for (const std::string_view text : texts) {
        if (!text.empty()) {
            return std::string(text);
        }
    }
    return {};
}

std::optional<std::string> trimmedName(const SessionMeta& meta)
{
    return meta.appName ? std::optional<std::string>(trimmed(*meta.appName)) : std::nullopt;
}

TextCard cardOf(const AppSettings& settings)
{
    return {
        .duration = settings.cardSeconds,
        .design = settings.cardDesign,
        .accentHex = settings.cardAccentHex};
}

TextCard titleCard(
    const AppSettings& settings, const SessionMeta& meta, const std::optional<VideoCopy>& copy)
{
    const auto appName = trimmedName(meta);
    TextCard card = cardOf(settings);
    card.title = firstNonEmpty(
        {trimmed(settings.titleCardText),
         copy ? trimmed(copy->title) : "",
         meta.title ? *meta.title : std::string_view(),
         appName ? *appName : std::string_view(),
         "Demo"});
    if (appName != card.title) {
        card.subtitle = appName;
    }
    return card;
}

TextCard endCard(const AppSettings& settings, const SessionMeta& meta)
{
    TextCard card = cardOf(settings);
    card.title = firstNonEmpty({trimmed(settings.endCardHeading), "Thanks for watching"});
    card.subtitle = std::string(trimmed(settings.endCardLine));
    if (card.subtitle->empty()) {
        card.subtitle = trimmedName(meta);
    }
    card.duration += kEndCardExtra;
    return card;
}

} // namespace

FilmCards currentCards(
    const AppSettings& settings, const SessionMeta& meta, const std::optional<VideoCopy>& copy)
{
    FilmCards cards;
    if (settings.titleCard) {
        cards.title = titleCard(settings, meta, copy);
    }
    if (settings.endCard) {
        cards.end = endCard(settings, meta);
    }
    return cards;
}

} // namespace zento
