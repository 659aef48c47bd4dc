// Runs a script of player commands against the engine, one line at a time.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "core/BestScoresFile.h"
#include "engine/Engine.h"
#include "engine/StandInShell.h"
#include "rules/ActionsMenu.h"
#include "rules/GameLibrary.h"
#include "rules/GameOptions.h"

namespace tolvar::sim {

class ScriptRunner {
public:
    // The game's random sequence starts from seed.
    ScriptRunner(GameLibrary& library, ActionsMenu& menu, std::uint32_t seed);

    // Runs every line of in. Returns 0 at the end of the script, or 2 after the first line that
    // cannot be run (with "tolvar-sim: line L: REASON" on standard error).
    int run(std::FILE* in);

    // The script commands, one per line with what each does, for --help.
    static const char* commandHelp();

private:
    // Runs one line; returns an empty text, or why the line cannot be run.
    std::string runLine(const std::string& line);
    std::string pointerEvent(std::int64_t type, const std::string& xs, const std::string& ys);
    std::string keyEvent(std::int64_t type, const std::string& key);
    // size W H, size default, colors N, colors default: the chosen game's board from its next
    // start; a value the game does not accept is refused, naming what it accepts.
    std::string chooseOptions(const std::vector<std::string>& words);
    void dumpBoard() const;
    // The board as the player sees it: the top row first, empty cells as '.', selected pieces
    // in brackets.
    void showBoard() const;
    void printState() const;

    GameLibrary& library_;
    ActionsMenu& menu_;
    // The desktop stood in for: alerts and score screens are lines on standard output, best
    // scores go to the player's data folder.
    BestScoresFile scores_;
    StandInHost host_;
    StandInView view_;
    Engine engine_;
    std::map<std::string, GameOptions> options_;  // each game's choices, by title
};

}  // namespace tolvar::sim
