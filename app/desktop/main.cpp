// Tolvar: start-up and the run loop.
#include <SDL.h>

#include <clocale>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "desktop/TolvarAppDelegate.h"
#include "core/CommandLine.h"
#include "engine/BoardNumbers.h"
#include "core/Translate.h"

namespace {

constexpr const char* kUsage = N_("usage: tolvar [--rules FILE] [--game NAME [--board N]] [--help] [--version]\n");
constexpr const char* kHelp = N_(
    "Plays the puzzle games of the rules file RulesDict.dict in $XDG_DATA_HOME/Tolvar\n"
    "(~/.local/share/Tolvar): pick a game in the main window and press Start.\n"
    "The engine's diagnostics are printed on standard output. A rules file saved while the\n"
    "game runs is read again at once, with what the checker finds in it.\n"
    "\n"
    "  --rules FILE  play the games of FILE instead (the data folder's rules file is then\n"
    "                neither read nor written)\n"
    "  --game NAME   start the game titled NAME at once\n"
    "  --board N     on board number N (1 to 999999999): the same number deals the same board\n"
    "  --help        show this help and exit\n"
    "  --version     show the version and exit\n");

int usage(const std::string& why) {
    std::fprintf(stderr, "tolvar: %s\n%s", why.c_str(), tolvar::tr(kUsage));
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    // The program's texts in the player's language, and dates on the score screen in its form.
    tolvar::startInPlayersLanguage();
    const std::string help = std::string(tolvar::tr(kUsage)) + tolvar::tr(kHelp);
    if (tolvar::answerHelpOrVersion(argc, argv, "tolvar", help)) return 0;
    std::string rulesFile, gameTitle, boardText;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        std::string* value = arg == "--rules"  ? &rulesFile
                             : arg == "--game" ? &gameTitle
                             : arg == "--board" ? &boardText
                                                : nullptr;
        if (!value) return usage(tolvar::trf("unknown argument %s", arg));
        if (++i >= argc || argv[i][0] == '\0') return usage(tolvar::trf("%s needs a value", arg));
        *value = argv[i];
    }
    std::optional<std::uint32_t> board;
    if (!boardText.empty()) {
        std::string why;
        board = tolvar::parseBoardNumber(boardText, &why);
        if (!board) return usage("--board: " + why);
        if (gameTitle.empty()) return usage(tolvar::tr("--board goes with --game NAME"));
    }
    // Diagnostic lines reach a pipe or a log as they are printed.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) {
        std::fprintf(stderr, "tolvar: cannot start the display: %s\n", SDL_GetError());
        return 1;
    }
    int status = 1;
    {
        tolvar::TolvarAppDelegate delegate;
        if (!rulesFile.empty() || !gameTitle.empty()) delegate.playFrom(rulesFile, gameTitle, board);
        if (delegate.applicationDidFinishLaunching()) status = delegate.run();
    }
    // SDL stays initialised until the process ends: shutting it down would unload the OpenGL
    // driver first, and the driver's own allocations could no longer be told apart from the
    // game's by a leak checker. The windows and contexts are already gone with the delegate.
    return status;
}
