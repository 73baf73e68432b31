// The engine thread over the product's clock and DirectInput wheel, apart from the rest of FfbEngine so
// that programs which run the engine offline (the replay, the analyzer) link no wheel.
#include "engine/EngineLoop.h"
#include "engine/EnginePlatform.h"
#include "engine/FfbEngine.h"

namespace veltor {

void FfbEngine::Start(const EngineSettings& current, WindowHandle window, DeviceGuid device) {
    StartWith<EnginePlatform>(current, window, device);
}

}  // namespace veltor
