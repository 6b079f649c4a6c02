#include "Zento/Screenshot/Screenshots.h"

#include "ZentoCapture/Backends/PortalScreen.h"
#include "ZentoCore/Error.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace zento {

namespace {

/// What a window that hides takes to be gone from the screen, fading included.
constexpr std::chrono::milliseconds kOutOfSight{300};

/// A line across the page at every seam in doubt, and a box around a scroll bar, which the user can
/// delete.
std::vector<Annotation> seamMarks(const ScrolledShot& shot)
{
    const double right = shot.shot.image->width();
    const double bottom = shot.shot.image->height();
    std::vector<Annotation> marks;
    for (const ScrollSeam& seam : shot.seams) {
        const auto y = static_cast<double>(seam.y);
        if (seam.doubt == ScrollDoubt::ScrollBar) {
            const double edge = ScrollStitch::edgeWidth(shot.shot.image->width());
            marks.push_back(
                {.kind = Annotation::Kind::Box,
                 .start = {right - edge, y},
                 .end = {right, bottom}});
        } else {
            marks.push_back({.kind = Annotation::Kind::Line, .start = {0, y}, .end = {right, y}});
        }
    }
    return marks;
}

std::optional<ScrolledShot> orGivenUp(const std::function<ScrolledShot()>& shooting)
try {
    return shooting();
} catch (const Error& error) {
    if (error.code() != ErrorCode::kCancelled) {
        throw;
    }
    return std::nullopt;
}

QString sentence(ScrollDoubt doubt)
{
    switch (doubt) {
    case ScrollDoubt::Repeats:
        return Screenshots::tr(
            "The page repeats itself, so a part of it may be missing or there twice. The red line "
            "shows where.");
    case ScrollDoubt::Changes:
        return Screenshots::tr(
            "The page changed while it scrolled, so it may not fit together. The red line shows "
            "where.");
    case ScrollDoubt::LostTrack:
        return Screenshots::tr(
            "The page could not be followed any further. It may go on below the red line.");
    case ScrollDoubt::Footer:
        return Screenshots::tr(
            "A bar at the lower edge of the page is in the picture more than once. The red line "
            "shows where.");
    case ScrollDoubt::ScrollBar:
        return Screenshots::tr("Something at the right edge of the page, as a scroll bar, does not "
                               "go with it. The red "
                               "box shows where.");
    case ScrollDoubt::CutShort:
        return Screenshots::tr("The capture ended early. The page goes on below the red line.");
    }
    return {};
}

/// What is told of them: the page matters more than a scroll bar.
QString sentence(const std::vector<ScrollSeam>& seams)
{
    const auto isPage = [](const ScrollSeam& s) { return s.doubt != ScrollDoubt::ScrollBar; };
    const auto first = std::ranges::find_if(seams, isPage);
    return seams.empty() ? QString()
                         : sentence((first == seams.end() ? seams.begin() : first)->doubt);
}

} // namespace

Screenshots::Screenshots(AppModel& app, ScreenshotServices services)
    : m_app(app)
    , m_services(std::move(services))
{
    connect(&m_app, &AppModel::actionRequested, this, &Screenshots::run);
}

void Screenshots::run(const QString& action)
{
    const bool isIdle = m_app.recording()->phase() == RecordingFlow::Phase::Idle
                        && m_app.panel() != AppModel::Panel::AreaPicker;
    if (m_isShooting || !isIdle) {
        return;
    }
    if (action == QLatin1StringView("screenshotScreen")) {
        shootWithoutUs(shootingOf(Target::Display{}));
    } else if (action == QLatin1StringView("screenshotWindow")) {
        m_app.pickWindow([this](std::optional<quint32> window) {
            if (window) {
                shootWithoutUs(shootingOf(Target::Window{*window}));
            }
        });
    } else if (action == QLatin1StringView("screenshotArea")) {
        pickArea([this](const Rect& area) { shootWithoutUs(shootingOf(Target::Area{area})); });
    } else if (action == QLatin1StringView("scrollingCapture")) {
        pickArea([this](const Rect& area) {
            shootWithoutUs([area, scroll = m_services.shootScrolling] { return scroll(area); });
        });
    }
}

void Screenshots::pickArea(std::function<void(const Rect&)> picked)
{
    const bool wasHidden = m_app.recording()->isApplicationHidden();
    m_app.pickArea(
        [this, wasHidden, picked = std::move(picked)](const std::optional<QRectF>& area) {
            if (area) {
                picked({area->x(), area->y(), area->width(), area->height()});
            }
            m_wasHidden = wasHidden; // by the user, before the picker hid it
        });
}

Screenshots::Shooting Screenshots::shootingOf(const CaptureTarget& target) const
{
    QRectF desktop;
    for (const QVariant& display : m_app.displays()) {
        desktop |= display.toRectF();
    }
    return [target, shoot = m_services.shoot, width = desktop.width()] {
        Shot shot = shoot(target);
        if (!shot.tellsScale) { // all displays in one picture, as dense as the densest of them
            shot.scale = std::max(streamScale(shot.image->width(), width), 1.0);
        }
        return ScrolledShot{std::move(shot), {}};
    };
}

void Screenshots::shootWithoutUs(Shooting shooting)
{
    m_isShooting = true;
    m_wasHidden = m_app.recording()->isApplicationHidden();
    m_app.recording()->hideApplication();
    m_sight = m_services.clock.every(kOutOfSight, [this, shooting = std::move(shooting)] {
        const Shooting chosen = shooting; // the timer goes, and its copy with it
        m_sight.reset();
        shoot(chosen);
    });
}

void Screenshots::shoot(Shooting shooting)
{
    struct Taken {
        std::optional<ScrolledShot> shot; // nothing: the user gave it up
        std::optional<Surroundings> surroundings;
    };
    compute(
        m_services.shooting,
        this,
        [shooting = std::move(shooting),
         services = m_services,
         isKnown = m_surroundings.has_value()] {
            Taken taken{orGivenUp(shooting), {}};
            if (taken.shot && !isKnown) {
                taken.surroundings = Surroundings{services.desktopImage(), services.wallpapers()};
            }
            return taken;
        },
        [this](Outcome<Taken> outcome) {
            m_isShooting = false;
            bringBack();
            if (!outcome) {
                m_app.messages()->setErrorMessage(
                    tr("The screenshot failed: %1").arg(QString::fromStdString(outcome.error())));
                m_app.activate();
                return;
            }
            if (outcome->surroundings) {
                m_surroundings = std::move(outcome->surroundings);
            }
            if (outcome->shot) {
                present(std::move(*outcome->shot));
            }
        });
}

void Screenshots::bringBack()
{
    if (!m_wasHidden) {
        m_app.recording()->showApplication();
    }
}

void Screenshots::present(ScrolledShot shot)
{
    const Surroundings surroundings = m_surroundings.value_or(Surroundings{});
    const ShotDocument marks{.annotations = seamMarks(shot), .crop = {}};
    auto* const editor = new ScreenshotEditor(
        std::move(shot.shot),
        {.drawing = m_services.drawing,
         .output = m_services.output,
         .files = m_services.files,
         .style = m_app.settings()->current().styleSpec(surroundings.desktop),
         .desktop = surroundings.desktop,
         .wallpapers = surroundings.wallpapers,
         .exportFolder = m_exports.path(),
         .saveTo = {},
         .doubt = sentence(shot.seams),
         .document = marks},
        this);
    Q_EMIT opened(editor);
}

} // namespace zento
