#include "desktop/TolvarAppDelegate.h"

#include <GL/gl.h>
#include <sys/time.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>

#include "FileIO.h"
#include "Textures.h"
#include "TextPixels.h"
#include "engine/RandomSequence.h"
#include "desktop/DisplayScale.h"
#include "desktop/SdlEvents.h"
#include "rules/ShownText.h"

namespace tolvar {

namespace {
constexpr double kEventTimerInterval = 0.033;
constexpr double kScoresTimerInterval = 0.033;
constexpr double kRulesLookInterval = 1.0;  // how soon a saved rules file shows
constexpr const char* kSoundSetting = "Sound";  // the settings' switch of the sound effects

std::string interfaceFontFile() {
    std::string file = text::fontFileFor("sans-serif");
    if (file.empty())
        std::fprintf(stderr, "tolvar: no interface font found through fontconfig; using the built-in font\n");
    return file;
}
}  // namespace

TolvarAppDelegate::TolvarAppDelegate() : timers_(monotonicSeconds) {}

TolvarAppDelegate::~TolvarAppDelegate() {
    // The engine draws through the view; the view's textures and sprites belong to the game
    // window's context, which must be current while they go.
    engine_.reset();
    recorder_.reset();
    if (gameWindow) gameWindow->makeCurrentContext();
    view_.reset();
    bestScoresWindow_.reset();
    helpWindow_.reset();
    popup_.reset();
    window.reset();
    gameWindow.reset();
}

bool TolvarAppDelegate::applicationDidFinishLaunching() {
    // 1. The numbers of the boards dealt without one, picked from the microseconds of the time of
    //    day (TOLVAR_SEED fixes them, so that a session can be replayed).
    struct timeval tv {};
    gettimeofday(&tv, nullptr);
    unsigned int seed = static_cast<unsigned int>(tv.tv_usec);
    if (const char* fixed = std::getenv("TOLVAR_SEED"); fixed && *fixed)
        seed = static_cast<unsigned int>(std::strtoul(fixed, nullptr, 10));

    // 2. No timers, no game, no background, paused (the engine starts so).
    eventTimer = 0;
    userEventTimer = false;
    scoresTimer = 0;
    GameView::Window callbacks;
    callbacks.flushBuffer = [this] {
        if (gameWindow) gameWindow->flushBuffer();
    };
    callbacks.mouseLocation = [this](double& x, double& y) {
        x = y = 0.0;
        if (gameWindow) gameWindow->mouseLocation(x, y);
    };
    callbacks.display = [this] {
        if (gameWindow) gameWindow->flushBuffer();
    };
    callbacks.marks = [this] { return boardMarks(); };
    callbacks.game = [this] { return runningGame(); };
    callbacks.random = [this] { return engine_->random().next(); };
    callbacks.boardNumber = [this] { return engine_->boardNumber(); };
    callbacks.displayScale = displayScale();
    view_ = std::make_unique<GameView>(*this, std::move(callbacks));
    view_->showSymbols(settings_.flag(kSymbolsSetting, false));
    recorder_ = std::make_unique<ShowRecorder>(show_, *view_, *this);
    engine_ = std::make_unique<Engine>(*recorder_, *this);
    engine_->seedBoardPicks(seed);

    // 3. The piece sprites: every slot empty.
    view_->clearPieceSprites(1);
    // 4. The game menu, from a file that is read again whenever it changes.
    rules_.load(library_);
    watchRulesFile();
    readSavedGame();
    // 5. The sounds, on or off as the player left them; a rules file's own are beside it. The device
    //    is opened with the game window.
    const std::string resources = resourceFolder();
    sound_ = std::make_unique<SoundEffects>((resources.empty() ? std::string("resources") : resources) + "/sounds",
                                            settings_.flag(kSoundSetting, true));
    sound_->setRulesFolder(std::filesystem::path(rules_.path()).parent_path().string());

    // Only the main window is made before it shows; the game window follows once it is up
    // (initWindow), and the "Actions" pop-up when it is first opened.
    interfaceFont_ = interfaceFontFile();
    window = std::make_unique<MainWindow>(interfaceFont_, kInterfaceFontPixels);
    if (!window->valid()) return false;
    showMainWindow();
    lastMenuSignature_ = menuSignature();
    return true;
}

void TolvarAppDelegate::playFrom(const std::string& rulesFile, const std::string& gameTitle,
                                 std::optional<std::uint32_t> board) {
    rules_ = RulesWatch(rulesFile);
    startTitle_ = gameTitle;
    startBoard_ = board;
}

void TolvarAppDelegate::watchRulesFile() {
    // Made anew after each reading, so that a link pointed at another file is followed there.
    rulesFileWatch_ = std::make_unique<FileWatch>(rules_.path());
    if (rulesFileWatch_->watching()) {
        timers_.invalidate(rulesLookTimer_);
        rulesLookTimer_ = 0;
    } else if (!timers_.isValid(rulesLookTimer_)) {
        rulesLookTimer_ = timers_.schedule(kRulesLookInterval, [this] { reloadRulesWhenChanged(); });
    }
}

void TolvarAppDelegate::reloadRulesWhenChanged() {
    if (!rules_.changedOnDisk()) return;
    rules_.load(library_);
    watchRulesFile();
    checkSavedGames();
    // Nothing of the old file is kept; the memory its reading took goes back to the system
    // (the allocator would keep the freed pages of many small pieces for itself).
#ifdef __GLIBC__
    malloc_trim(0);
#endif
    std::size_t errors = 0, warnings = 0;
    for (const checker::Problem& p : rules_.report().problems)
        ++(p.severity == checker::Severity::Error ? errors : warnings);
    std::fprintf(stderr, "Tolvar: %s changed: %zu games, %zu errors, %zu warnings\n", rules_.path().c_str(),
                 library_.allGameRules() ? library_.allGameRules()->asDictionary()->size() : std::size_t{0}, errors,
                 warnings);
    mainFrames_ = kMainWindowFramesPerChange;
}

bool TolvarAppDelegate::initWindow() {
    // The game window with its context and fixed state, made hidden: nothing is seen before Start.
    gameWindow = std::make_unique<MyWindow>("", static_cast<int>(winWidth), static_cast<int>(winHeight));
    if (!gameWindow->valid()) return false;
    gameWindow->makeCurrentContext();
    view_->initWindowState();
    gameWindow->fitToUsableArea();
    gameWindow->center();
    // The background, at the size the window shows it.
    const PictureFit fit = gameWindow->pictureFitInPixels();
    view_->loadBGTexture(fit.width, fit.height);
    // Named once it is ready to show a game.
    nameWindows();
    // The audio device, for the game window's sounds.
    sound_->prepare();
    // What the start-up decoded and read (the background's pixels, the rules file's reading) goes
    // back to the system instead of staying with the allocator.
#ifdef __GLIBC__
    malloc_trim(0);
#endif
    return true;
}

// ---------------------------------------------------------------- the run loop

int TolvarAppDelegate::run() {
    // The main window's first frame goes up before anything else is made.
    drawWindows();
    if (!initWindow()) return 1;
    if (!startTitle_.empty()) {
        const auto& titles = library_.gameMenu();
        if (std::find(titles.begin() + 1, titles.end(), startTitle_) == titles.end()) {
            std::fprintf(stderr, "tolvar: no game titled \"%s\" in %s\n", startTitle_.c_str(), rules_.path().c_str());
        } else {
            selectGame(startTitle_);
            startGame(startBoard_);
        }
    }
    try {
        runLoop();
    } catch (const std::exception& e) {
        // Whatever stops the loop, a window's failure included, the unfinished game is kept.
        std::fprintf(stderr, "tolvar: stopped by an error: %s\n", e.what());
        saveGameOnQuit();
        return 1;
    }
    saveGameOnQuit();
    return 0;
}

void TolvarAppDelegate::runLoop() {
    while (!quit_) {
        int timeoutMs = -1;
        const double untilTimer = timers_.secondsUntilNextDue();
        if (untilTimer >= 0.0) timeoutMs = static_cast<int>(std::ceil(untilTimer * 1000.0));
        const double untilShown = gameWindow ? show_.secondsUntilDue(monotonicSeconds()) : -1.0;
        if (untilShown >= 0.0) {
            const int showMs = static_cast<int>(std::ceil(untilShown * 1000.0));
            timeoutMs = timeoutMs < 0 ? showMs : std::min(timeoutMs, showMs);
        }
        if (mainFrames_ > 0 || popupFrames_ > 0 || helpFrames_ > 0 || bestScoresFrames_ > 0) timeoutMs = 0;

        SDL_Event event;
        const int got = timeoutMs < 0 ? SDL_WaitEvent(&event) : SDL_WaitEventTimeout(&event, timeoutMs);
        if (got) {
            dispatch(event);
            while (!quit_ && SDL_PollEvent(&event)) dispatch(event);
            wakeEventTick();
        }
        if (quit_) break;
        timers_.fireDue();
        if (quit_) break;
        playShow();
        drawWindows();
    }
}

namespace {
void retitle(SDL_Window* window, const std::string& title) {
    if (window && title != SDL_GetWindowTitle(window)) SDL_SetWindowTitle(window, title.c_str());
}
}  // namespace

void TolvarAppDelegate::nameWindows() {
    const std::string chosen = library_.currentRules() ? library_.selectedTitle() : std::string();
    if (window) retitle(window->surface().sdlWindow(), titleNaming(chosen, "Tolvar"));
    if (gameWindow) retitle(gameWindow->sdlWindow(), titleNaming(runningGame() ? runningGame()->gameName : "", "Tolvar"));
}

void TolvarAppDelegate::drawWindows() {
    nameWindows();
    const std::string signature = menuSignature();
    if (signature != lastMenuSignature_) {
        lastMenuSignature_ = signature;
        mainFrames_ = kMainWindowFramesPerChange;
        popupFrames_ = kMainWindowFramesPerChange;
    }
    if (window && mainFrames_ > 0) {
        --mainFrames_;
        if (window->surface().keyboardWaiting()) ++mainFrames_;
        if (window->surface().isVisible()) {
            const bool running = gameWindow && gameWindow->isVisible();
            std::vector<ShellCommand> commands = window->draw(library_, menu_, gameMenuState(), running, rules_,
                                                              canContinue(), continueText(), continueProblem(),
                                                              shownBoardNumber(), gameOptions_);
            if (gameWindow) gameWindow->makeCurrentContext();
            runCommands(commands);
        }
    }
    if (helpWindow_ && helpFrames_ > 0) {
        --helpFrames_;
        if (helpWindow_->surface().keyboardWaiting()) ++helpFrames_;
        if (helpWindow_->isOpen() && !helpWindow_->draw()) closeHelp();
        if (gameWindow) gameWindow->makeCurrentContext();
    }
    if (bestScoresWindow_ && bestScoresFrames_ > 0) {
        --bestScoresFrames_;
        if (bestScoresWindow_->surface().keyboardWaiting()) ++bestScoresFrames_;
        if (bestScoresWindow_->isOpen() && !bestScoresWindow_->draw()) closeBestScores();
        if (gameWindow) gameWindow->makeCurrentContext();
    }
    if (popupFrames_ > 0) {
        --popupFrames_;
        if (popup_ && popup_->surface().keyboardWaiting()) ++popupFrames_;
        if (popup_ && popup_->isOpen()) {
            const ActionsPopup::Choice chosen = popup_->draw(menu_, gameMenuState());
            gameWindow->makeCurrentContext();
            if (chosen.kind != ActionsPopup::Choice::Kind::None) closePopup();
            switch (chosen.kind) {
                case ActionsPopup::Choice::Kind::None: break;
                case ActionsPopup::Choice::Kind::Action: checkMenuAction(chosen.actionIndex); break;
                case ActionsPopup::Choice::Kind::Game: runProgramCommand(chosen.command); break;
                case ActionsPopup::Choice::Kind::ReturnToMain: returnToMain(); break;
            }
        }
    }
}

void TolvarAppDelegate::runCommands(const std::vector<ShellCommand>& commands) {
    for (const ShellCommand& c : commands) {
        switch (c.kind) {
            case ShellCommand::Kind::SelectGame: selectGame(c.title); break;
            case ShellCommand::Kind::StartGame: startGame(); break;
            case ShellCommand::Kind::ReturnToMain: returnToMain(); break;
            case ShellCommand::Kind::MenuAction: checkMenuAction(c.itemIndex); break;
            case ShellCommand::Kind::Quit: terminate(); break;
            case ShellCommand::Kind::Program: runProgramCommand(c.command); break;
            case ShellCommand::Kind::ContinueGame: continueGame(); break;
            case ShellCommand::Kind::PlayBoardNumber: startGame(c.board); break;
            case ShellCommand::Kind::CopyBoardNumber: copyBoardNumber(); break;
        }
        mainFrames_ = kMainWindowFramesPerChange;
    }
}

std::string TolvarAppDelegate::menuSignature() const {
    std::string s = menu_.enabled() ? "1" : "0";
    for (const ActionsMenuItem& item : menu_.items()) {
        s += item.title;
        s += item.enabled ? '+' : '-';
        s += static_cast<char>(item.keyEquivalent);
    }
    s += gameWindow && gameWindow->isVisible() ? 'g' : 'm';
    s += canContinue() ? 'c' : '-';
    s += continueText() + continueProblem();
    const GameMenuState game = gameMenuState();
    for (const bool possible : {game.newGame, game.undo, game.redo, game.hint, game.symbols, game.soundOn})
        s += possible ? '+' : '-';
    return s + std::to_string(shownBoardNumber());
}

std::uint32_t TolvarAppDelegate::shownBoardNumber() const {
    const GameInfo* game = runningGame();
    return game && game->hasBoard() && game->gameName == library_.selectedTitle() ? engine_->boardNumber() : 0;
}

void TolvarAppDelegate::copyBoardNumber() const {
    const std::uint32_t number = shownBoardNumber();
    if (number != 0 && SDL_SetClipboardText(std::to_string(number).c_str()) != 0)
        std::fprintf(stderr, "tolvar: the board number cannot be copied: %s\n", SDL_GetError());
}

// ---------------------------------------------------------------- the main window's actions

void TolvarAppDelegate::selectGame(const std::string& title) {
    library_.selectGame(title);
    mainFrames_ = kMainWindowFramesPerChange;
}

void TolvarAppDelegate::startGame(std::optional<std::uint32_t> board) {
    // A game with errors is not started; the main window lists them.
    if (rules_.refuses(library_.selectedTitle()) || !gameReady()) return;
    gameWindow->makeCurrentContext();
    engine_->startGame(library_.currentRules(), menu_,
                       gameOptions_.optionsFor(library_.selectedTitle(), library_.currentRules()), board);
}

void TolvarAppDelegate::returnToMain() {
    if (popup_) closePopup();
    gameWindow->makeCurrentContext();
    // What is still to show goes up at once; an alert left on the game window goes with it.
    paintSteps(show_.takeAll());
    engine_->returnToMain();
}

void TolvarAppDelegate::checkMenuAction(int itemIndex) {
    gameWindow->makeCurrentContext();
    if (gameReady()) engine_->checkMenuAction(menu_, itemIndex);
}

// ---------------------------------------------------------------- Host

void TolvarAppDelegate::runAlert(const std::string& title, const std::string& message, const std::string& button) {
    // In the game window over its board, in turn with what the game shows; outside a game, in
    // the main window.
    if (gameWindow && gameWindow->isVisible()) {
        ShowStep step;
        step.kind = ShowStep::Kind::Alert;
        step.alert = {title, message, button};
        show_.append(std::move(step));
    } else if (window) {
        std::fprintf(stderr, "tolvar: alert: %s [%s]\n", message.c_str(), button.c_str());
        window->alert(message, button);
        mainFrames_ = kMainWindowFramesPerChange;
    }
}

bool TolvarAppDelegate::scoresTimerRunning() const { return timers_.isValid(scoresTimer); }

void TolvarAppDelegate::startScoresTimer(const Value& scores) {
    if (timers_.isValid(scoresTimer)) return;
    scoresList_ = scores;
    scoresTimer = timers_.schedule(kScoresTimerInterval, [this] {
        if (!show_.idle()) return;  // the screen comes in its turn, after what the window still plays
        // The list is held by the timer, as its user info.
        const Value scores = scoresList_;
        view_->scoresTimerFired(scores);
    });
}

void TolvarAppDelegate::stopScoresTimer() {
    timers_.invalidate(scoresTimer);
    scoresTimer = 0;
    scoresList_ = Value();
}

void TolvarAppDelegate::resetProjection() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, winWidth, 0.0, winHeight, 600.0, -600.0);
}

void TolvarAppDelegate::showGameWindow() {
    if (!gameWindow) return;
    gameWindow->orderFront();
    gameWindow->makeCurrentContext();
    view_->setNeedsDisplay();
    eventTickSuspended_ = false;
    wakeEventTick();
}

void TolvarAppDelegate::hideGameWindow() {
    if (popup_) closePopup();
    if (gameWindow) gameWindow->orderOut();
    pointerLeft();
    // Nobody sees a hidden game: its tick rests until the window is shown again, so the game
    // costs nothing while the player is in the main window. Queued events wait for it.
    timers_.invalidate(eventTimer);
    eventTimer = 0;
    eventTickSuspended_ = true;
}

void TolvarAppDelegate::showMainWindow() {
    if (!window) return;
    window->surface().show();
    mainFrames_ = kMainWindowFramesPerChange;
}

void TolvarAppDelegate::hideMainWindow() {
    if (window) window->surface().hide();
}

void TolvarAppDelegate::scheduleEngineTimers() {
    userEventTimer = true;
    wakeEventTick();
}

void TolvarAppDelegate::wakeEventTick() {
    if (!userEventTimer || eventTickSuspended_ || eventTimer != 0) return;
    eventTimer = timers_.schedule(kEventTimerInterval, [this] { eventTick(); });
}

void TolvarAppDelegate::eventTick() {
    if (!show_.idle()) return;  // the game waits while the window plays what it showed
    gameWindow->makeCurrentContext();
    engine_->processEvents();
    // An event that came while a start was pending is seen once the start has gone through.
    checkUserEvents();
    if (!engine_->hasPendingEvents()) {
        timers_.invalidate(eventTimer);
        eventTimer = 0;
    }
}


void TolvarAppDelegate::toggleSound() {
    sound_->setOn(!sound_->on());
    if (const auto error = settings_.setFlag(kSoundSetting, sound_->on()))
        std::fprintf(stderr, "tolvar: sound %s for this run only: %s cannot be written (%s)\n",
                     sound_->on() ? "on" : "off", error->path.c_str(), error->reason.c_str());
}

}  // namespace tolvar
