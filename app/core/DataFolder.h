// The player's data folder: $XDG_DATA_HOME/Tolvar, with XDG_DATA_HOME defaulting to
// ~/.local/share when unset, empty or relative. It holds "RulesDict.dict", "BestScores.dict",
// the saved games and "Settings.dict".
#pragma once

#include <string>

namespace tolvar {

// The user's application-support directory: $XDG_DATA_HOME when it is an absolute path, else
// $HOME/.local/share.
// When create is true the directory is created with its parents if missing.
std::string applicationSupportDirectory(bool create);

// applicationSupportDirectory(true) + "/Tolvar".
std::string tolvarFolderPath();
std::string rulesFilePath();  // tolvarFolderPath() + "/RulesDict.dict"

}  // namespace tolvar
