// The chosen game's board choices in the main window, under its description: the board's width
// and height and the number of colours, each within what the game accepts, the rules' values
// until the player changes them, and "Default" to go back to those. They are remembered per game
// in the settings file and apply from the next Start.
#pragma once

#include <optional>
#include <string>

#include "core/AtomicFile.h"
#include "core/PropertyList.h"
#include "core/SettingsFile.h"
#include "rules/GameInfo.h"
#include "rules/GameOptions.h"

namespace tolvar {

class GameOptionsPanel {
public:
    explicit GameOptionsPanel(SettingsFile& settings) : settings_(settings) {}

    // The choices remembered for the game titled title, whose rules are rules: only those the
    // game accepts and that differ from its rules.
    GameOptions optionsFor(const std::string& title, const Value* rules) const;

    // The row's height, for the window to leave room for it.
    static float height();
    // One row of the game titled title (nothing shown without rules). A change is remembered at
    // once; returns why it could not be written.
    std::optional<FileWriteError> draw(const std::string& title, const Value* rules);

private:
    // The choices remembered for the game, less those equal to its rules' (own) values.
    GameOptions remembered(const std::string& title, const GameInfo& own) const;
    std::optional<FileWriteError> remember(const std::string& title, const GameInfo& own, const GameOptions& chosen);

    SettingsFile& settings_;
};

}  // namespace tolvar
