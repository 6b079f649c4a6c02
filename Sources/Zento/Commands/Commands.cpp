#include "Zento/Commands/Commands.h"

#include "Zento/Commands/Arguments.h"
#include "Zento/Commands/Subcommands.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iostream>
#include <new>

namespace zento {

namespace {

constexpr std::string_view kUsage = R"(Zento records a desktop and edits the recording into a film.

usage:
  zento record [--screen N | --window ID | --area X,Y,W,H] [--seconds S]
               [--microphone] [--camera] [--system-audio]
      records until S seconds have passed or Control-C; the last line of output is the recording's
      folder. Without a target: the display under the pointer
      --screen N         a display, counted from 0, from left to right, then from top to bottom
      --window ID        a window by its X11 number, as xwininfo or xdotool tell it: 0x3e00001;
                         on Wayland "pick", and the desktop asks which one
      --area X,Y,W,H     a part of the desktop, in points from its top-left corner
      --microphone       the default microphone, too
      --camera           the default camera, too
      --system-audio     what the default output plays, too
      --toggle           alone: as zento toggle
  zento plan BUNDLE [--settings FILE] [--config FILE] [--overrides FILE] [--music FILE]
             [--size WxH] [--fps N] [--output FILE]
      prints the plan of a recording's film as JSON
  zento render BUNDLE [--settings FILE] [--output FILE] [--gif]
      renders the film of a recording, beside it or to FILE; with --gif, or a FILE ending in .gif,
      the film beside it and a GIF of it, beside it or to FILE
  zento screenshot [--screen N | --window ID | --area X,Y,W,H] [--edit] [--output FILE]
      shoots a target, named as for record, into FILE or a new file in the current folder, and
      prints its name; with --edit opens the editor on it, which saves to FILE
  zento recover BUNDLE
      completes a recording whose program was killed, with at most its last second missing; prints
      the bundle's folder
  zento demo [--output FOLDER]
      records a scripted session on a display of its own and renders it
  zento doctor
      looks at everything a recording needs and says in a line each what is there and what to do
  zento toggle
      starts or stops a recording in the application that runs, for a key of the desktop's own
  zento --help | --version
)";

struct Subcommand {
    std::string_view name;
    void (*run)(std::span<const std::string_view>, const ShotEdit&);
};

/// A subcommand that edits no screenshot.
template <auto kRun>
void alone(std::span<const std::string_view> words, const ShotEdit&)
{
    kRun(words);
}

constexpr std::array<Subcommand, 9> kSubcommands{{
    {"record", alone<record>},
    {"plan", alone<plan>},
    {"render", alone<render>},
    {"recover", alone<recover>},
    {"demo", alone<demo>},
    {"doctor", alone<doctor>},
    {"toggle", alone<toggle>},
    {"screenshot", screenshot},
    {"search-provider",
     alone<searchProvider>}, // started by the session bus, so the usage does not tell
}};

enum Status { Done = 0, Failed = 1, BadUsage = 2 };

int runSubcommand(
    const Subcommand& command, std::span<const std::string_view> words, const ShotEdit& editShot)
{
    try {
        command.run(words, editShot);
        std::cout.flush();
        if (!std::cout) {
            std::cerr << "zento: the result could not be written to standard output\n";
            return Failed;
        }
        return Done;
    } catch (const UsageError& error) {
        std::cerr << "zento " << command.name << ": " << error.what()
                  << "; zento --help shows how it is used\n";
        return BadUsage;
    } catch (const std::bad_alloc&) {
        std::cerr << "zento: there is not enough memory for this\n";
    } catch (const std::exception& error) {
        std::cerr << "zento: " << error.what() << '\n';
    }
    return Failed;
}

} // namespace

int runCommand(std::span<const std::string_view> words, const ShotEdit& editShot)
{
    if (words.empty() || words.front() == "--help" || words.front() == "-h") {
        std::cout << kUsage;
        return Done;
    }
    if (words.front() == "--version") {
        std::cout << "zento " ZENTO_VERSION "\n";
        return Done;
    }
    const auto command = std::ranges::find(kSubcommands, words.front(), &Subcommand::name);
    if (command == kSubcommands.end()) {
        std::cerr << "zento: there is no command \"" << words.front()
                  << "\"; zento --help shows those there are\n";
        return BadUsage;
    }
    return runSubcommand(*command, words.subspan(1), editShot);
}

} // namespace zento
