#include "window/web_pages.h"

#include "monitoring/command_runner.h"
#include "ui/waiting.h"

#include <string>

namespace torvane {

namespace {

void openPage(const char* page) {
    const std::string command = std::string("powershell Start-Process ") + TORVANE_VENDOR_SITE + page;
    // Who does not wait for it misses nothing: what came of it stands in the browser.
    static_cast<void>(waiting::run("PowerShell", [command] { PARSE_BuildDataFile("WorkFile.txt", command.c_str()); }));
}

} // namespace

void openSuggestionPage() {
    openPage("suggestion-page.php");
}

void openAboutPage() {
    openPage("about-page.php");
}

void openDocumentationPage() {
    openPage("documentation-page.php");
}

void openWorkOrderDocument() {
    // The doubled slashes are kept: it is the address that the site answers to.
    openPage("wp-content//uploads//2014//10//data-recovery-work-order.pdf");
}

} // namespace torvane
