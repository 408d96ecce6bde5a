// Folders of the user's own. House text. Any thread.
#pragma once

#include <string>

// A variable of the environment; empty without it.
std::string EnvironmentText(const char* name);
// The folder and those above it, made where they are not there.
void MakeFolders(const std::string& folder);
bool IsFolder(const std::string& path);
