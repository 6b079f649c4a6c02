#include "Zento/Screenshot/Screenshots.h"

#include <chrono>
#include <utility>

namespace zento {

namespace {

/// What a window that hides takes to be gone from the screen, fading included.
constexpr std::chrono::milliseconds kOutOfSight{300};

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
        shootWithoutUs(Target::Display{});
    } else if (action == QLatin1StringView("screenshotWindow")) {
        m_app.pickWindow([this](std::optional<quint32> window) {
            if (window) {
                shootWithoutUs(Target::Window{*window});
            }
        });
    } else if (action == QLatin1StringView("screenshotArea")) {
        const bool wasHidden = m_app.recording()->isApplicationHidden();
        m_app.pickArea([this, wasHidden](const std::optional<QRectF>& area) {
            if (area) {
                shootWithoutUs(
                    Target::Area{{area->x(), area->y(), area->width(), area->height()}});
            }
            m_wasHidden = wasHidden; // by the user, before the picker hid it
        });
    }
}

void Screenshots::shootWithoutUs(const CaptureTarget& target)
{
    m_isShooting = true;
    m_wasHidden = m_app.recording()->isApplicationHidden();
    m_app.recording()->hideApplication();
    m_sight = m_services.clock.every(kOutOfSight, [this, target] {
        const CaptureTarget chosen = target; // the timer goes, and its copy with it
        m_sight.reset();
        shoot(chosen);
    });
}

void Screenshots::shoot(const CaptureTarget& target)
{
    struct Taken {
        Shot shot;
        std::optional<Surroundings> surroundings;
    };
    compute(
        m_services.shooting,
        this,
        [target, services = m_services, isKnown = m_surroundings.has_value()] {
            Taken taken{services.shoot(target), {}};
            if (!isKnown) {
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
            present(std::move(outcome->shot));
        });
}

void Screenshots::bringBack()
{
    if (!m_wasHidden) {
        m_app.recording()->showApplication();
    }
}

void Screenshots::present(Shot shot, const QString& doubt)
{
    const Surroundings surroundings = m_surroundings.value_or(Surroundings{});
    auto* const editor = new ScreenshotEditor(
        std::move(shot),
        {.drawing = m_services.drawing,
         .output = m_services.output,
         .files = m_services.files,
         .style = m_app.settings()->current().styleSpec(surroundings.desktop),
         .desktop = surroundings.desktop,
         .wallpapers = surroundings.wallpapers,
         .exportFolder = m_exports.path(),
         .saveTo = {}},
        this);
    editor->setDoubt(doubt);
    Q_EMIT opened(editor);
}

} // namespace zento
