#include "BuiltinBoards.h"

#include <unistd.h>

#include <cstdio>
#include <fcntl.h>

#include "engine/BoardSetup.h"
#include "rules/ActionsMenu.h"
#include "rules/BuiltinGames.h"
#include "rules/RulesDict.h"

namespace tolvar::bench {

namespace {

// Sends standard output to /dev/null while it lives.
class QuietStdout {
public:
    QuietStdout() {
        std::fflush(stdout);
        saved_ = dup(STDOUT_FILENO);
        const int null = open("/dev/null", O_WRONLY);
        if (null >= 0) {
            dup2(null, STDOUT_FILENO);
            close(null);
        }
    }
    ~QuietStdout() {
        std::fflush(stdout);
        if (saved_ >= 0) {
            dup2(saved_, STDOUT_FILENO);
            close(saved_);
        }
    }
    QuietStdout(const QuietStdout&) = delete;
    QuietStdout& operator=(const QuietStdout&) = delete;

private:
    int saved_ = -1;
};

}  // namespace

std::unique_ptr<GameInfo> startBuiltinGame(const std::string& name, GameView& view, RandomSequence& random) {
    Value rules;
    if (name == "Vexamor") rules = createTestGameOne();
    else if (name == "Trindle") rules = createTestGameTwo();
    else if (name == "Glimmet") rules = createTestGameThree();
    else return nullptr;
    QuietStdout quiet;  // the view's own lines ("Deleting sprite 1")
    ActionsMenu menu;
    const GameOutput thrownAway = GameOutput::discarded();
    std::unique_ptr<GameInfo> game = createStructsFromRulesDict(&rules, menu, thrownAway);
    if (!game || game->boardWidth < 1 || game->boardHeight < 1) return nullptr;
    setupGame(*game, view, random, thrownAway);
    if (!game->hasBoard()) return nullptr;
    return game;
}

}  // namespace tolvar::bench
