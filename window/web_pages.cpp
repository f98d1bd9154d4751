#include "window/web_pages.h"

#include "monitoring/command_runner.h"
#include "state/app_state.h"

#include <string>

namespace torvane {

namespace {

constexpr const char* kVendorSite = "https://www.torvane.example/";

void openPage(AppState& state, const char* page) {
    const std::string command = std::string("powershell Start-Process ") + kVendorSite + page;
    PARSE_BuildDataFile(state, "WorkFile.txt", command.c_str());
}

} // namespace

void openSuggestionPage(AppState& state) {
    openPage(state, "suggestion-page.php");
}

void openAboutPage(AppState& state) {
    openPage(state, "about-page.php");
}

void openDocumentationPage(AppState& state) {
    openPage(state, "documentation-page.php");
}

void openWorkOrderDocument(AppState& state) {
    // The doubled slashes are kept: it is the address that the site answers to.
    openPage(state, "wp-content//uploads//2014//10//data-recovery-work-order.pdf");
}

} // namespace torvane
