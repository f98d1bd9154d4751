#pragma once

#include <functional>
#include <string>

namespace torvane {

/// Lets the user choose a file and writes the text of the log into it, in UTF-8, whole or not at all. `text` is asked
/// for when he has chosen, on the calling thread, which is the window's. A "SUCCESS" row tells where it is, an "ERROR"
/// row and a box that it is not.
void saveLogAsText(const std::function<std::string()>& text);

/// The same for the details of a drive, under the name that is offered.
void saveDetailsAsText(const std::string& offeredName, const std::string& text);

} // namespace torvane
