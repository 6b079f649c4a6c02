#include "ZentoCapture/SideRecorder.h"

#include "ZentoCapture/CameraRecorder.h"
#include "ZentoCapture/MicRecorder.h"
#include "ZentoCapture/SystemAudioWriter.h"

namespace zento {

SideRecorderFactories sideRecorderFactories()
{
    return {
        .microphone = [] { return std::make_unique<MicRecorder>(); },
        .camera = [] { return std::make_unique<CameraRecorder>(); },
        .systemAudio = [] { return std::make_unique<SystemAudioWriter>(); }};
}

} // namespace zento
