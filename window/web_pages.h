#pragma once

namespace torvane {

// The commands that open a page of the vendor's web site in the user's browser. They run PowerShell and
// wait for it while the window goes on answering; a failure to start it is logged by the command runner.

void openSuggestionPage();
void openAboutPage();
void openDocumentationPage();
void openWorkOrderDocument();

} // namespace torvane
