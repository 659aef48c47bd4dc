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

bool startBuiltinGame(const std::string& name, GameView& view) {
    Value rules;
    if (name == "Vexamor") rules = createTestGameOne();
    else if (name == "Trindle") rules = createTestGameTwo();
    else if (name == "Glimmet") rules = createTestGameThree();
    else return false;
    QuietStdout quiet;
    ActionsMenu menu;
    gameInfo = createStructsFromRulesDict(&rules, menu);
    if (!gameInfo || gameInfo->boardWidth < 1 || gameInfo->boardHeight < 1) return false;
    setupGame(*gameInfo, view);
    return gameInfo->hasBoard();
}

}  // namespace tolvar::bench
