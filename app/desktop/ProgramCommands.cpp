// The shell's keys and commands around the game: the program's own keys, the help window and the
// game window's size.
#include "desktop/TolvarAppDelegate.h"

#include <cstdio>

#include "FileIO.h"
#include "core/DocumentPages.h"
#include "core/Translate.h"
#include "rules/GameHelp.h"

namespace tolvar {

bool TolvarAppDelegate::keyShortcuts(const SDL_Event& event, const CurrentEvent& key, Uint32 windowID) {
    // A key bound to a user event of the running game is the game's, never a command (a key
    // without text is bound to nothing: character 0 stands for "no key" in the rules).
    if (engine_ && firstCharacter(key) != 0 && MyWindow::performKeyEquivalent(*engine_, key)) return false;
    const bool inGame = gameWindow && windowID == gameWindow->windowID();
    // The arrows and, while the cursor shows, Return are no commands: the engine's input door
    // gives them to the keyboard cursor.
    const bool cursorShown = engine_ && engine_->cursor().has_value();
    const ProgramCommand command = programCommandForKey(event.key.keysym.sym, event.key.keysym.mod, inGame, cursorShown);
    if (command != ProgramCommand::None) {
        runProgramCommand(command);
        return true;
    }
    // The "Actions" items answer their key equivalents (the plain key).
    if (!menu_.enabled()) return false;
    const std::int8_t c = firstCharacter(key);
    for (int i = 0; i < ActionsMenu::kItemCount; ++i) {
        const ActionsMenuItem& item = menu_.item(i);
        if (item.enabled && item.keyEquivalent != 0 && item.keyEquivalent == c) {
            checkMenuAction(i);
            return false;
        }
    }
    return false;
}

void TolvarAppDelegate::runProgramCommand(ProgramCommand command) {
    switch (command) {
        case ProgramCommand::None: break;
        case ProgramCommand::Quit: terminate(); break;
        case ProgramCommand::ReturnToMain:
            if (gameWindow && gameWindow->isVisible()) returnToMain();
            break;
        case ProgramCommand::NewGame:
            if (gameReady()) newGame();
            break;
        case ProgramCommand::Undo:
        case ProgramCommand::Redo:
            if (!gameWindow || !gameReady()) break;
            gameWindow->makeCurrentContext();
            clearHint();
            if (command == ProgramCommand::Undo) engine_->undo();
            else engine_->redo();
            break;
        case ProgramCommand::Hint:
            if (gameReady()) showHint();
            break;
        case ProgramCommand::Help: showHelp(); break;
        case ProgramCommand::WritingGames: openWritingGames(); break;
        case ProgramCommand::About: showAbout(); break;
        case ProgramCommand::Fullscreen:
            if (gameWindow) gameWindow->toggleFullscreen();
            break;
        case ProgramCommand::BestScores:
            if (bestScoresWindow_ && bestScoresWindow_->isOpen()) closeBestScores();
            else showBestScores();
            break;
        case ProgramCommand::Symbols: toggleSymbols(); break;
        case ProgramCommand::ToggleSound: toggleSound(); break;
    }
}

bool TolvarAppDelegate::playing() const {
    return runningGame() && runningGame()->hasBoard() && engine_->gamePaused() == 0;
}

GameMenuState TolvarAppDelegate::gameMenuState() const {
    GameMenuState state;
    state.newGame = (runningGame() && runningGame()->hasBoard()) || library_.currentRules();
    state.undo = engine_ && engine_->canUndo();
    state.redo = engine_ && engine_->canRedo();
    state.hint = playing();
    state.symbols = view_ && view_->symbolsShown();
    state.soundOn = sound_ && sound_->on();
    return state;
}

void TolvarAppDelegate::newGame() {
    clearHint();
    // The same game dealt anew, also from the main window (whose game comes to the front); with
    // no game dealt yet, the chosen game starts.
    if (!runningGame() || !runningGame()->hasBoard()) {
        if (library_.currentRules()) startGame();
        return;
    }
    if (!gameWindow) return;
    if (!gameWindow->isVisible()) {
        showGameWindow();
        hideMainWindow();
    }
    gameWindow->makeCurrentContext();
    engine_->newGame();
}

namespace {
// English on standard error, in the player's language on the board.
constexpr const char* kNoMoveLeft = N_("No move left");
constexpr const char* kNoSwapGroups = N_("No swap makes a group: this one moves the pieces on");
}  // namespace

void TolvarAppDelegate::showHint() {
    // The hint is the board's as the game stands: a flash still playing ends first.
    if (!playing() || !gameWindow || !gameReady()) return;
    gameWindow->makeCurrentContext();
    const Hint hint = engine_->hint();
    hint_ = hint.cells;
    hintNote_ = hint.cells.empty() ? kNoMoveLeft : hint.makesGroup ? "" : kNoSwapGroups;
    if (!hintNote_.empty()) std::fprintf(stderr, "tolvar: hint: %s\n", hintNote_.c_str());
    view_->drawBoard(shownGame_);
}

void TolvarAppDelegate::clearHint() {
    if (hint_.empty() && hintNote_.empty()) return;
    hint_.clear();
    hintNote_.clear();
    if (playing() && gameWindow && gameWindow->isVisible()) {
        gameWindow->makeCurrentContext();
        view_->drawBoard(shownGame_);
    }
}

void TolvarAppDelegate::openHelpWindow() {
    // Made when first asked for, like the "Actions" pop-up.
    if (!helpWindow_) helpWindow_ = std::make_unique<HelpWindow>(interfaceFont_, kInterfaceFontPixels);
    if (gameWindow) gameWindow->makeCurrentContext();
}

void TolvarAppDelegate::showHelp() {
    // The unfinished game is saved before the help window is made or shown: whatever befalls a
    // window, the game is not lost.
    if (engine_ && engine_->hasUnfinishedGame()) saveGameOnQuit();
    openHelpWindow();
    // The help of the game being played (a continued game may be none the main window chose),
    // else of the chosen one.
    const bool shown = gameWindow && gameWindow->isVisible() && runningGame();
    helpWindow_->showGame(gameHelp(shown ? rulesOf(runningGame()->gameName) : library_.currentRules()));
    helpFrames_ = kMainWindowFramesPerChange;
}

void TolvarAppDelegate::showAbout() {
    openHelpWindow();
    helpWindow_->showAbout();
    helpFrames_ = kMainWindowFramesPerChange;
}

// The names of the rules file's games, which the best-score tables are grouped under.
namespace {
std::vector<std::string> gameNamesOf(const Value* allGameRules) {
    std::vector<std::string> names;
    const Dictionary* games = allGameRules ? allGameRules->asDictionary() : nullptr;
    if (!games) return names;
    for (const auto& [title, rules] : games->entries()) {
        const Dictionary* dict = rules.asDictionary();
        const Value* name = dict ? dict->find("GameName") : nullptr;
        names.push_back(name && name->asString() ? *name->asString() : title);
    }
    return names;
}
}  // namespace

void TolvarAppDelegate::showBestScores() {
    // Made when first asked for, like help.
    if (!bestScoresWindow_) bestScoresWindow_ = std::make_unique<BestScoresWindow>(interfaceFont_, kInterfaceFontPixels);
    bestScoresWindow_->open(bestScores_.path(), gameNamesOf(library_.allGameRules()));
    // While it is open, a score entered by another copy of the game shows at once.
    bestScoresWatch_ = std::make_unique<FileWatch>(bestScores_.path());
    bestScoresFrames_ = kMainWindowFramesPerChange;
    if (gameWindow) gameWindow->makeCurrentContext();
}

void TolvarAppDelegate::closeBestScores() {
    if (!bestScoresWindow_ || !bestScoresWindow_->isOpen()) return;
    bestScoresWindow_->close();
    bestScoresWatch_.reset();
    // The keyboard goes back to the window it was opened over: the game's while it shows.
    if (gameWindow && gameWindow->isVisible()) SDL_SetWindowInputFocus(gameWindow->sdlWindow());
    else if (window && window->surface().isVisible()) SDL_SetWindowInputFocus(window->surface().sdlWindow());
}

void TolvarAppDelegate::lookAtBestScores() {
    if (bestScoresWindow_ && bestScoresWindow_->reloadWhenChanged()) bestScoresFrames_ = kMainWindowFramesPerChange;
}

void TolvarAppDelegate::toggleSymbols() {
    const bool shown = !view_->symbolsShown();
    view_->showSymbols(shown);
    // The choice holds for this run even when it cannot be remembered.
    if (const auto error = settings_.setFlag(kSymbolsSetting, shown))
        std::fprintf(stderr, "%s: symbols on pieces cannot be remembered (%s)\n", error->path.c_str(),
                     error->reason.c_str());
    mainFrames_ = popupFrames_ = kMainWindowFramesPerChange;
    // The board (or the score screen) as it stands, drawn again at once with or without them.
    if (gameWindow && gameWindow->isVisible()) {
        gameWindow->makeCurrentContext();
        view_->redrawLastFrame(shownGame_);
        drawAlertPanel();
    }
}

namespace {
constexpr const char* kWritingGamesPage = "writing-games.md";
}  // namespace

void TolvarAppDelegate::openWritingGames() {
    const DocumentPage page =
        findDocumentPage(kWritingGamesPage, {programFolder(), TOLVAR_BUILD_PROGRAM_DIR, TOLVAR_SOURCE_DOCS_DIR});
    if (page.path.empty()) {
        tellWhereWritingGamesIs(tr("It is not installed here; a complete install of Tolvar has it."), page.installedPath);
        return;
    }
    writingGamesPath_ = page.path;
    const std::string problem = pageOpener_.open(page.path);
    if (!problem.empty()) tellWhereWritingGamesIs(trf("Tolvar cannot show it: %s.", problem), page.path);
}

void TolvarAppDelegate::writingGamesViewerEnded(Sint32 status) {
    pageOpener_.forgetEnded();
    if (status == 0) return;
    const std::string why = status == PageOpener::kKilled
                                ? std::string(tr("Tolvar cannot show it: xdg-open was stopped."))
                                : trf("Tolvar cannot show it: xdg-open ended with status %s.", std::to_string(status));
    tellWhereWritingGamesIs(why, writingGamesPath_);
}

void TolvarAppDelegate::tellWhereWritingGamesIs(const std::string& problem, const std::string& path) {
    std::fprintf(stderr, "tolvar: the page for rules authors: %s It is %s\n", problem.c_str(), path.c_str());
    openHelpWindow();
    helpWindow_->showWritingGames(problem, path);
    helpFrames_ = kMainWindowFramesPerChange;
}

}  // namespace tolvar
