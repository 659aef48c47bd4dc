// The balance bench: a bot plays many seeded games of one title to their end, and the figures
// (scores, moves, how games end, games per second) tell how the game plays out.
#pragma once

#include <string>
#include <vector>

#include "core/ScoreStore.h"
#include "rules/GameLibrary.h"

namespace tolvar::sim {

enum class Player {
    Random,  // any move the game takes
    Greedy,  // the move after which the game would end with the best score, by its own direction
};

struct AutoplayOptions {
    unsigned long games = 0;
    std::string title;
    Player player = Player::Random;
    unsigned jobs = 1;
    std::string csvFile;      // one line per game, or empty
    unsigned long seed = 1;   // game i plays with seed + i
    unsigned long maxMoves = 10000;  // a game still going after this many moves is stopped
};

// One game played to its end.
struct GameResult {
    unsigned long index = 0;
    std::int64_t score = 0;
    unsigned long moves = 0;
    bool ended = false;    // the game ended by itself (its score was entered)
    bool cleared = false;  // no piece was left
};

// Plays game index of the title chosen in library with a bot, entering its end's best score in
// scores, with an engine of its own whose diagnostic lines go nowhere.
GameResult playOneGame(const GameLibrary& library, const AutoplayOptions& options, unsigned long index,
                       ScoreStore& scores);

// Plays options.games games in options.jobs threads and prints the table on standard output.
// Returns the exit status.
int runAutoplay(const GameLibrary& library, const AutoplayOptions& options);

// The table of figures for results (in the order of their index).
std::string autoplayTable(const AutoplayOptions& options, const std::vector<GameResult>& results, double seconds);

}  // namespace tolvar::sim
