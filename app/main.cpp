// Tolvar: start-up and the run loop.
#include <GL/freeglut.h>
#include <SDL.h>

#include <clocale>
#include <cstdio>

#include "TolvarAppDelegate.h"
#include "platform/CommandLine.h"

namespace {

constexpr const char* kHelp =
    "usage: tolvar [--help] [--version]\n"
    "Plays the puzzle games of the rules file RulesDict.dict in $XDG_DATA_HOME/Tolvar\n"
    "(~/.local/share/Tolvar): pick a game in the main window and press Start.\n"
    "The engine's diagnostics are printed on standard output.\n"
    "\n"
    "  --help     show this help and exit\n"
    "  --version  show the version and exit\n";

}  // namespace

int main(int argc, char** argv) {
    if (tolvar::answerHelpOrVersion(argc, argv, "tolvar", kHelp)) return 0;
    // Diagnostic lines reach a pipe or a log as they are printed.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    // Dates on the score screen follow the player's locale.
    std::setlocale(LC_ALL, "");
    std::setlocale(LC_NUMERIC, "C");
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_EVENTS) != 0) {
        std::fprintf(stderr, "tolvar: cannot start the display: %s\n", SDL_GetError());
        return 1;
    }
    // The board and score text use GLUT's bitmap font.
    glutInit(&argc, argv);
    int status = 1;
    {
        tolvar::TolvarAppDelegate delegate;
        if (delegate.applicationDidFinishLaunching()) status = delegate.run();
    }
    // SDL stays initialised until the process ends: shutting it down would unload the OpenGL
    // driver first, and the driver's own allocations could no longer be told apart from the
    // game's by a leak checker. The windows and contexts are already gone with the delegate.
    return status;
}
