#include "window/start_up.h"

#include "ui/prompts.h"

namespace torvane {

void runProgram(const StartUpSteps& steps) {
    if (!steps.startSockets()) {
        prompts::warn("Torvane", steps.socketsFailedText().c_str());
        return;
    }
    steps.runMainDialog();
    steps.endSockets();
}

} // namespace torvane
