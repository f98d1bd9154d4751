#pragma once

namespace torvane {

// The current folder, in which the program works: "Message.db", "Config.db", scripts, what tools print, images' numbers
// and reports are there. The system starts a program in whatever folder its starter names: a task scheduler in its own.

/// Makes the program's folder current when "Message.db" lies there and not in the current folder.
void chooseWorkFolder();

/// The box before the end when "Message.db" is there, but cannot be opened for reading and writing: it names the folder
/// and says why. None when it is missing.
void tellUnopenedMessages();

/// One box when no file can be made in the current folder: it names the folder, says why and what will not work.
void tellReadOnlyFolder();

} // namespace torvane
