// The loaded rules file and the game menu: setupGameSelections and selectGame:.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/PropertyList.h"
#include "rules/GameDescriptions.h"

namespace tolvar {

class GameLibrary {
public:
    // setupGameSelections: creates the data folder when missing (printing "code: %ld"), reads
    // "RulesDict.dict" or creates it with the built-in games, and fills the game menu with
    // "None" followed by the games in the file's order. A file that cannot be read leaves
    // allGameRules empty and the menu unchanged, with one line on standard error naming the file
    // and the reason; an existing file is never written over. Returns false in that case.
    bool setupGameSelections();

    // The same, but the rules come from rulesPath, which is neither created nor written; the data
    // folder is still created when missing.
    bool loadRulesFromFile(const std::string& rulesPath);

    // selectGame: with a title of the game menu; "None" (or an unknown title) empties
    // currentRules and leaves the description text as it was. The description text is the game's
    // as the main window shows it (see shownDescription), in the language of locale when the game
    // has a description in it (see descriptionFor); "Unknown" when the game has none.
    void selectGame(const std::string& title);

    const std::vector<std::string>& gameMenu() const { return gameMenu_; }
    const Value* allGameRules() const { return allGameRules_ ? &*allGameRules_ : nullptr; }
    const Value* currentRules() const { return currentRules_ ? &*currentRules_ : nullptr; }
    const std::string& descriptionText(std::string_view locale = "C") const;
    const std::string& selectedTitle() const { return selectedTitle_; }
    // Why setupGameSelections could not write the missing rules file (empty when it could, or
    // did not have to): the built-in games are then played from memory.
    const std::string& rulesNotWritten() const { return rulesNotWritten_; }

private:
    void fillGameMenu();

    std::optional<Value> allGameRules_;
    std::optional<Value> currentRules_;
    std::vector<std::string> gameMenu_;
    std::vector<Description> descriptions_;
    std::string rulesNotWritten_;
    std::string selectedTitle_ = "None";
};

}  // namespace tolvar
