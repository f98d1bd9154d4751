#pragma once

namespace torvane {

struct AppState;

// The commands that open a page of the vendor's web site in the user's browser. They run PowerShell on the calling
// thread and wait for it; a failure to start it is logged by the command runner.

void openSuggestionPage(AppState& state);
void openAboutPage(AppState& state);
void openDocumentationPage(AppState& state);
void openWorkOrderDocument(AppState& state);

} // namespace torvane
