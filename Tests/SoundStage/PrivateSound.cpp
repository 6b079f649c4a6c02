#include "SoundStage/PrivateSound.h"

#include "Zento/Demo/Programs.h"
#include "Zento/Demo/Waiting.h"
#include "ZentoCapture/Backends/PipeWireNodes.h"
#include "ZentoCore/Error.h"

#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <ranges>
#include <system_error>

namespace zento::test {

namespace {

constexpr double kPatience = 15; // seconds

constexpr std::string_view kOutputs = R"(
context.objects = [
  { factory = adapter args = {
      factory.name = support.null-audio-sink  node.name = speakers  media.class = Audio/Sink
      audio.position = [ FL FR ]  priority.session = 1000  object.linger = true } }
  { factory = adapter args = {
      factory.name = support.null-audio-sink  node.name = headphones  media.class = Audio/Sink
      audio.position = [ FL FR ]  priority.session = 900  object.linger = true } }
]
)";

} // namespace

bool hasNode(const std::string& name)
{
    try {
        PipeWireLoop loop("test.nodes");
        const PipeWireNodes nodes(loop, [] {});
        const PipeWireLoop::Lock lock(loop);
        return loop.roundTrip()
               && std::ranges::find(nodes.nodes(), name, &PipeWireNode::name)
                      != nodes.nodes().end();
    } catch (const Error&) {
        return false; // not up yet
    }
}

PrivateSound::PrivateSound(PrivateDesktop& desktop)
    : m_desktop(desktop)
{
    desktop.home().writeFile(".config/pipewire/pipewire.conf.d/outputs.conf", kOutputs);
    start({program("pipewire")});
    const auto socket =
        std::filesystem::path(desktop.environment().at("XDG_RUNTIME_DIR")) / "pipewire-0";
    waitUntil([&] { return std::filesystem::exists(socket); }, kPatience, "no PipeWire", {});
    start({program("wireplumber")});
    waitForNode(kSpeakers);
    waitForNode(kHeadphones);
}

PrivateSound::~PrivateSound()
{
    // Those that need the service end before it.
    for (const pid_t program : m_programs | std::views::reverse) {
        kill(program, SIGTERM);
        while (ProcessGroup::isRunning(program)) {
            sleepFor(0.002, {});
        }
    }
    // The next one shall not find what was chosen on this one.
    std::error_code ignored;
    std::filesystem::remove_all(m_desktop.home().path() / ".local/state/wireplumber", ignored);
}

pid_t PrivateSound::start(const std::vector<std::string>& command)
{
    return m_programs.emplace_back(m_desktop.start(command));
}

pid_t PrivateSound::plugInMicrophone(const std::string& name)
{
    const pid_t microphone = start(
        {program("pw-loopback"),
         "-c",
         "1",
         "-m",
         "[ MONO ]",
         "--capture-props={ media.class=Audio/Sink node.name=" + name + "-feed }",
         "--playback-props={ media.class=Audio/Source priority.session=2000 node.name=" + name
             + " }"});
    waitForNode(name);
    waitForNode(name + "-feed");
    return microphone;
}

void PrivateSound::setDefaultOutput(const std::string& name)
{
    start(
        {program("pw-metadata"),
         "0",
         "default.configured.audio.sink",
         R"({ "name": ")" + name + R"(" })",
         "Spa:String:JSON"});
}

std::string PrivateSound::program(const std::string& name) const
{
    const std::string package = name == "wireplumber" || name == "pipewire" ? name : "pipewire-bin";
    return requireProgram(name, package, m_desktop.environment().at("PATH"));
}

void PrivateSound::waitForNode(const std::string& name)
{
    waitUntil([&] { return hasNode(name); }, kPatience, "there is no " + name, {});
}

} // namespace zento::test
