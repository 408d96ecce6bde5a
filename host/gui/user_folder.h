// Folders of the user's own, and what windows keep there from one run to the next. House text. Any thread.
#pragma once

#include <string>
#include <vector>

// A variable of the environment; empty without it.
std::string EnvironmentText(const char* name);
// The folder and those above it, made where they are not there.
void MakeFolders(const std::string& folder);
bool IsFolder(const std::string& path);
// Where the user's documents are, as the desktop has it; the home without such a folder. Empty if there is none of them either.
std::string DocumentsFolder();

// The lines of a file in the folder for what programs keep ($XDG_STATE_HOME/orvik, else ~/.local/state/orvik; %APPDATA%\Orvik on
// Windows), in UTF-8 there. None where there is no such file; storing replaces it as a whole, or does nothing where it cannot be.
// A line with a line's end in it is left out.
std::vector<std::string> KeptLines(const std::string& name);
void KeepLines(const std::string& name, const std::vector<std::string>& lines);
