#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Subcommands.h"
#include "Zento/Desktop/SearchProvider.h"
#include "Zento/Desktop/SingleInstance.h"
#include "ZentoCore/Error.h"
#include "ZentoCore/SessionBundle.h"

#include <QCoreApplication>

namespace zento {

namespace {

/// What the bus needs to be heard; without a display, unlike the application.
struct EventLoop {
    int count = 1;
    char name[6] = "zento";           // NOLINT(modernize-avoid-c-arrays): argv
    char* words[2] = {name, nullptr}; // NOLINT(modernize-avoid-c-arrays)
    QCoreApplication application{count, words};
};

} // namespace

void toggle(std::span<const std::string_view> words)
{
    Arguments(words, {}).expectNone();
    const EventLoop loop;
    if (!SingleInstance::tell("toggleRecording")) {
        throw Error(ErrorCode::kNotRunning, "Zento is not running in this session");
    }
}

void searchProvider(std::span<const std::string_view> words)
{
    Arguments(words, {}).expectNone();
    EventLoop loop;
    SearchProvider provider(sessionsFolder());
    if (!provider.start()) {
        throw Error(ErrorCode::kNotRunning, "the session bus does not take the search provider");
    }
    QObject::connect(&provider, &SearchProvider::idle, &loop.application, &QCoreApplication::quit);
    QCoreApplication::exec();
}

} // namespace zento
