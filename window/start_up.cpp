#include "window/start_up.h"

#include "base/format.h"
#include "ui/prompts.h"

namespace torvane {

namespace {

constexpr std::uint32_t kUtf8 = 65001;

void tellForeignCodePage(std::uint32_t codePage) {
    prompts::warn("***** OLD WINDOWS *****",
                  formatText("This Windows does not let Torvane work in UTF-8 (its code page is %u). Windows 10 from "
                             "version 1903 on does.\n\nTorvane works all the same. But characters outside ASCII may be "
                             "shown wrongly, and images, reports and folders whose names have such characters may not "
                             "be opened. Please use names of plain letters and digits.",
                             codePage)
                      .c_str());
}

} // namespace

void runProgram(const StartUpSteps& steps) {
    // First, because the folder is chosen by a file that may be missing.
    steps.provideFiles();
    steps.chooseFolder();
    if (!steps.startSockets()) {
        prompts::warn("Torvane", steps.socketsFailedText().c_str());
        return;
    }
    // Asked of the process, not of the version: a version may be feigned, and a system be set to UTF-8 as a whole.
    if (const std::uint32_t codePage = steps.codePage(); codePage != kUtf8) {
        tellForeignCodePage(codePage);
    }
    steps.runMainDialog();
    steps.endSockets();
}

} // namespace torvane
