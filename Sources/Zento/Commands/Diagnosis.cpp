#include "Zento/Commands/Diagnosis.h"

#include <algorithm>

namespace zento {

namespace {

// A minute of a large display takes about a gigabyte.
constexpr std::int64_t kGigabyte = 1'000'000'000;
constexpr std::int64_t kEnough = 10 * kGigabyte;
constexpr std::int64_t kAlmostNothing = kGigabyte;

std::string joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : ", ") + word;
    }
    return text;
}

std::string counted(std::size_t count, const std::string& thing)
{
    return std::to_string(count) + " " + thing + (count == 1 ? "" : "s");
}

std::string version(unsigned number)
{
    return "version " + std::to_string(number);
}

Finding display(const DesktopServices& services)
{
    const SessionFacts& facts = services.facts;
    if (facts.isWaylandSession()) {
        const std::string where = facts.waylandDisplay.empty() ? "wayland-0" : facts.waylandDisplay;
        return services.hasDisplay ? Finding{"display", Health::Good, "Wayland, " + where, {}}
                                   : Finding{
                                         "display",
                                         Health::Missing,
                                         "the Wayland compositor at " + where + " is not there",
                                         "start Zento inside the session"};
    }
    if (services.hasDisplay) {
        return {"display", Health::Good, "X11, " + facts.x11Display, {}};
    }
    return {
        "display",
        Health::Missing,
        facts.x11Display.empty() ? "no desktop: neither WAYLAND_DISPLAY nor DISPLAY is set"
                                 : "the X server at " + facts.x11Display + " does not answer",
        "start Zento inside a desktop's session"};
}

Finding bus(const DesktopServices& services)
{
    return services.hasSessionBus
               ? Finding{"session bus", Health::Good, "there", {}}
               : Finding{
                     "session bus",
                     services.facts.isWaylandSession() ? Health::Missing : Health::Limited,
                     "none",
                     "log in through the desktop's own login, or start Zento with "
                     "dbus-run-session"};
}

std::string offered(const ScreenCastOffer& offer)
{
    std::vector<std::string> parts;
    if (offer.monitors) {
        parts.emplace_back("monitors");
    }
    if (offer.windows) {
        parts.emplace_back("windows");
    }
    return parts.empty() ? "nothing to show" : joined(parts);
}

Finding screenPortal(const DesktopServices& services)
{
    const bool isNeeded = services.facts.isWaylandSession();
    if (services.portals.screenCast == 0) {
        return isNeeded
                   ? Finding{
                         "screen portal",
                         Health::Missing,
                         "none",
                         "install xdg-desktop-portal and the backend of your desktop, such as "
                         "xdg-desktop-portal-gnome, -kde or -wlr, then log in again"}
                   : Finding{"screen portal", Health::Good, "none; only Wayland needs one", {}};
    }
    const std::string what = version(services.portals.screenCast) + ", " + offered(services.offer);
    if (isNeeded && !services.offer.pointerAsMetadata) {
        return {
            "screen portal",
            Health::Limited,
            what + ", without the pointer's place",
            "the film keeps the desktop's own pointer and makes no zooms; a newer portal tells it"};
    }
    return {"screen portal", Health::Good, what, {}};
}

/// What an X server does itself and elsewhere a portal is for.
Finding
further(const char* subject, unsigned number, const DesktopServices& services, const char* advice)
{
    if (services.facts.isWaylandSession()) {
        return number > 0 ? Finding{subject, Health::Good, version(number), {}}
                          : Finding{subject, Health::Limited, "none", advice};
    }
    return services.hasDisplay ? Finding{subject, Health::Good, "by the X server", {}}
                               : Finding{subject, Health::Limited, "no display", "see display"};
}

Finding input(const DesktopServices& services)
{
    switch (services.input) {
    case InputAccess::Server:
        return {"input", Health::Good, "clicks and keys from the X server", {}};
    case InputAccess::Devices:
        return {"input", Health::Good, "clicks and keys from /dev/input", {}};
    case InputAccess::None:
        break;
    }
    if (!services.facts.isWaylandSession()) {
        return {"input", Health::Missing, "no display to listen to", "see display"};
    }
    return {
        "input",
        Health::Limited,
        "the pointer only; clicks and keys cannot be read",
        "sudo usermod -aG input $USER and log in again, if programs of yours may read them"};
}

Finding pipeWire(const DesktopServices& services)
{
    if (!services.hasPipeWire) {
        return {
            "PipeWire",
            services.facts.isWaylandSession() ? Health::Missing : Health::Limited,
            "none: no microphone, no camera, no system audio",
            "install pipewire and wireplumber, then log in again"};
    }
    return {
        "PipeWire",
        Health::Good,
        counted(services.microphones.size(), "microphone") + ", "
            + counted(services.cameras.size(), "camera"),
        {}};
}

Finding accessibility(const DesktopServices& services)
{
    return services.hasAccessibility
               ? Finding{"accessibility", Health::Good, "on", {}}
               : Finding{
                     "accessibility",
                     Health::Limited,
                     "off, so zooms do not know what was clicked",
                     services.hasSessionBus
                         ? "switch it on in the welcome sheet, or install at-spi2-core"
                         : "see session bus"};
}

Finding encoders(const Circumstances& all)
{
    return all.missingEncoders.empty() ? Finding{"encoders", Health::Good, "all there", {}}
                                       : Finding{
                                             "encoders",
                                             Health::Missing,
                                             "without " + joined(all.missingEncoders),
                                             "install FFmpeg's libraries with these encoders"};
}

Finding fonts(const Circumstances& all)
{
    return all.missingTypefaces.empty()
               ? Finding{"fonts", Health::Good, "all there", {}}
               : Finding{
                     "fonts",
                     Health::Limited,
                     "without " + joined(all.missingTypefaces) + ", so others stand in",
                     "install fonts-inter, fonts-jetbrains-mono, fonts-noto-core, fonts-quicksand"};
}

Finding models(const Circumstances& all)
{
    return all.hasSpeechModel ? Finding{"models", Health::Good, "person and speech", {}}
                              : Finding{
                                    "models",
                                    Health::Limited,
                                    "person, but no speech, so captions show no words",
                                    "install pocketsphinx-en-us"};
}

Finding disk(const Circumstances& all)
{
    const std::string folder = all.recordings.string();
    if (!all.freeBytes) {
        return {"disk", Health::Limited, folder + " does not say how much is free", {}};
    }
    const std::string what = std::to_string(*all.freeBytes / kGigabyte) + " GB free in " + folder;
    if (*all.freeBytes >= kEnough) {
        return {"disk", Health::Good, what, {}};
    }
    return {
        "disk",
        *all.freeBytes < kAlmostNothing ? Health::Missing : Health::Limited,
        what,
        "a minute of a large display takes about 1 GB: make room, or name another XDG_VIDEOS_DIR"};
}

} // namespace

std::vector<Finding> diagnose(const Circumstances& all)
{
    const DesktopServices& services = all.services;
    return {
        display(services),
        bus(services),
        screenPortal(services),
        further(
            "screenshots",
            services.portals.screenshot,
            services,
            "a screenshot is a frame of the screen portal instead"),
        further(
            "hot keys",
            services.portals.globalShortcuts,
            services,
            "bind a shortcut of the desktop to: zento record --toggle"),
        input(services),
        pipeWire(services),
        accessibility(services),
        encoders(all),
        fonts(all),
        models(all),
        disk(all)};
}

bool canRecord(const Circumstances& circumstances)
{
    const auto findings = diagnose(circumstances);
    return std::ranges::find(findings, Health::Missing, &Finding::health) == findings.end();
}

std::string line(const Finding& finding)
{
    constexpr std::size_t kSubjectWidth = 15;
    const char* const health = finding.health == Health::Good      ? "ok       "
                               : finding.health == Health::Limited ? "limited  "
                                                                   : "missing  ";
    std::string text = health + finding.subject;
    text.append(kSubjectWidth - std::min(kSubjectWidth - 1, finding.subject.size()), ' ');
    text += finding.what;
    return finding.advice.empty() ? text : text + "; " + finding.advice;
}

} // namespace zento
