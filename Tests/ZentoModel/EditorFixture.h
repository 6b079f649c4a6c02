#pragma once

#include "ModelFakes.h"
#include "TestSupport/TemporaryFolder.h"
#include "Zento/Model/EditSession.h"
#include "ZentoCore/SessionBundle.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace zento::test {

/// An edit session over fakes and real bundles of 60 s with clicks every 6 s.
class EditorTest : public testing::Test {
protected:
    EditorTest()
        : m_settings(m_folder / "settings.json", m_files)
        , m_session(std::in_place, ports())
    {
    }

    EditSession::Ports ports()
    {
        return {
            .clock = m_clock,
            .edits = m_edits,
            .analyses = m_analyses,
            .speech = m_analyses,
            .settings = m_settings,
            .desktopImage = [this] {
                ++m_plans;
                return std::optional<std::string>();
            }};
    }

    std::filesystem::path bundle(const std::string& name, double duration = 60) const
    {
        SessionBundle made;
        made.url = m_folder / name;
        made.meta = {
            .pixelWidth = 1920,
            .pixelHeight = 1080,
            .scaleFactor = 1,
            .nominalFPS = 60,
            .duration = duration};
        for (double t = 3; t < duration; t += 6)
            made.events.push_back(
                {.t = t, .kind = EventKind::Click, .pos = {200 + t * 20, 300 + t * 5}});
        made.writeMetadata();
        return made.url;
    }

    void open(const std::filesystem::path& path) { m_session->open(path.c_str()); }

    /// Lets a burst's plan and save fall due.
    void settle() { m_clock.advance(std::chrono::seconds(2)); }

    const EditPlan& plan() const { return *m_session->film()->film->plan; }

    TemporaryFolder m_folder;
    FakeClock m_clock;
    FakeWorker m_files;
    FakeWorker m_edits;
    FakeWorker m_analyses;
    SettingsModel m_settings;
    int m_plans = 0; // begun
    std::optional<EditSession> m_session;
};

} // namespace zento::test
