#pragma once

namespace torvane {

// The commands that open a page of the vendor's web site in the user's browser. They run PowerShell on the calling
// thread and wait for it; a failure to start it is logged by the command runner.

void openSuggestionPage();
void openAboutPage();
void openDocumentationPage();
void openWorkOrderDocument();

} // namespace torvane
