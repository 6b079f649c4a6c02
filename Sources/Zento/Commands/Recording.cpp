#include "Zento/Commands/Recording.h"

#include "ZentoCapture/Recovery.h"
#include "ZentoCore/Error.h"

#include <iostream>
#include <system_error>
#include <utility>

namespace zento {

namespace {

Error keptDespite(const Error& error, const std::filesystem::path& folder)
{
    return {
        error.domain(),
        error.code(),
        std::string(error.what()) + "; what was recorded is kept, and zento recover "
            + folder.string() + " makes a recording of it"};
}

} // namespace

Recording::Recording(
    std::filesystem::path bundle,
    Desktop& desktop,
    const CaptureTarget& target,
    const Sources& sources,
    Interruption& interruption)
    : m_bundle(std::move(bundle))
    , m_session(m_bundle, desktop)
{
    m_session.target = target;
    m_session.recordNarration = sources.microphone;
    m_session.recordWebcam = sources.camera;
    m_session.recordSystemAudio = sources.systemAudio;
    m_session.onStreamStopped = [&interruption](const std::optional<Error>&) {
        interruption.requestStop(); // the session has said why
    };
    try {
        m_session.start(interruption.token());
    } catch (const Error& error) {
        std::error_code ignored;
        std::filesystem::remove_all(m_bundle, ignored);
        throw Error(
            error.domain(),
            error.code(),
            std::string("Could not start recording: ") + error.what());
    }
}

Recording::~Recording()
{
    if (!m_isKept) {
        std::error_code ignored;
        std::filesystem::remove_all(m_bundle, ignored);
    }
}

std::filesystem::path Recording::finish()
{
    try {
        m_session.stop();
    } catch (const Error& error) {
        m_isKept = m_session.frameCount() > 0 && isCutShort(m_bundle);
        throw m_isKept ? keptDespite(error, m_bundle) : error;
    }
    m_isKept = true;
    if (const int dropped = m_session.droppedFrameCount(); dropped > 0) {
        std::cerr << dropped << " of " << m_session.frameCount() + dropped
                  << " frames were dropped because the disk or the encoder was busy.\n";
    }
    return m_bundle;
}

} // namespace zento
