// The application: start-up, the two windows, the run loop with the game's timers, and the
// desktop services the rule engine asks for (alerts, score timer, projection). What an engine
// operation shows is played afterwards by the run loop (ShowPlayer.cpp); nothing waits.
#pragma once

#include <SDL.h>

#include <map>
#include <memory>
#include <string>

#include "desktop/BestScoresWindow.h"
#include "desktop/HelpWindow.h"
#include "desktop/MainWindow.h"
#include "desktop/MyWindow.h"
#include "desktop/RulesWatch.h"
#include "desktop/ShowRecorder.h"
#include "desktop/SoundEffects.h"
#include "engine/BoardLayout.h"
#include "engine/Engine.h"
#include "engine/Host.h"
#include "core/BestScoresFile.h"
#include "core/DataFolder.h"
#include "desktop/FileWatch.h"
#include "desktop/PageOpener.h"
#include "desktop/ProgramKeys.h"
#include "core/SavedGamesFile.h"
#include "core/SettingsFile.h"
#include "desktop/GameOptions.h"
#include "core/PropertyList.h"
#include "desktop/RunLoop.h"
#include "presentation/GameView.h"
#include "presentation/ShowQueue.h"
#include "rules/ActionsMenu.h"
#include "rules/GameLibrary.h"

namespace tolvar {

class TolvarAppDelegate : public Host {
public:
    TolvarAppDelegate();
    ~TolvarAppDelegate() override;
    TolvarAppDelegate(const TolvarAppDelegate&) = delete;
    TolvarAppDelegate& operator=(const TolvarAppDelegate&) = delete;

    // Before start-up: play the games of rulesFile instead of the data folder's (which is then
    // neither read nor written for rules), and start the game titled gameTitle at once when given.
    // board: the board number it starts on (one is picked when not given).
    void playFrom(const std::string& rulesFile, const std::string& gameTitle,
                  std::optional<std::uint32_t> board = std::nullopt);
    // Start-up: the main window; false when it could not be made.
    bool applicationDidFinishLaunching();
    // The run loop: makes the game window once the main window is up (status 1 when it cannot be
    // made), and returns when the player quits.
    int run();

    // The main window's actions.
    void selectGame(const std::string& title);
    void startGame(std::optional<std::uint32_t> board = std::nullopt);
    void returnToMain();
    void checkMenuAction(int itemIndex);
    void terminate() { quit_ = true; }

    // Host
    void runAlert(const std::string& title, const std::string& message, const std::string& button) override;
    bool scoresTimerRunning() const override;
    void startScoresTimer(const Value& scores) override;
    void stopScoresTimer() override;
    void resetProjection() override;
    void showGameWindow() override;
    void hideGameWindow() override;
    void showMainWindow() override;
    void hideMainWindow() override;
    void scheduleEngineTimers() override;
    ScoreStore& scoreStore() override { return bestScores_; }

private:
    bool initWindow();
    void runLoop();
    void dispatch(const SDL_Event& event);
    // The program's keys (true: the key was a command, the game does not see it), the keyboard
    // cursor and the "Actions" shortcuts.
    bool keyShortcuts(const SDL_Event& event, const CurrentEvent& key, Uint32 windowID);
    void runProgramCommand(ProgramCommand command);
    // Sound on and off (the M key, the Game menu), remembered in the settings.
    void toggleSound();
    GameMenuState gameMenuState() const;
    bool playing() const;
    // The engine's running game, or nullptr.
    const GameInfo* runningGame() const { return engine_ ? engine_->game() : nullptr; }  // a board of the running game takes moves
    void newGame();
    // The hint's cells outlined, and a line over the board when it has no move to show or its
    // swap makes no group; both go with the next input.
    void showHint();
    void clearHint();
    // The preview of the move under the pointer (HoverPreview.cpp). followPointer takes each of
    // the game window's pointer and key events (in picture points); a preview is worked out when
    // the pointer goes into another cell. pointerLeft: it left the window. dropPreview puts the
    // board back as it is (at once while it rests); forgetPreview only forgets the preview, for a
    // show that draws the board anew.
    void followPointer(const CurrentEvent& event);
    void pointerLeft();
    std::optional<MovePreview> previewAt(float x, float y) const;
    bool previewShown() const;
    void dropPreview();
    void forgetPreview();
    BoardMarks boardMarks() const;
    // Continue: the game kept after Return, or one saved when a copy of the program quit.
    struct ContinueOffer {
        enum class Kind { None, Kept, Saved };
        Kind kind = Kind::None;
        std::string title;
    };
    void readSavedGame();
    void checkSavedGames();  // against the rules as they are now
    const Value* rulesOf(const std::string& title) const;
    ContinueOffer continueOffer() const;
    void continueGame();
    bool canContinue() const;
    std::string continueText() const;     // which game Continue goes on with
    std::string continueProblem() const;  // why it cannot
    // Writes game, the running game as it is to be kept, beside the others (nothing: it ended,
    // its saved game is taken out).
    void storeRunningGame(const std::optional<Value>& game);
    void saveGameOnQuit();
    void openHelpWindow();
    void showHelp();
    // The best scores of every game in a window of their own, read again while open when the
    // file changes (the kernel tells); Escape, Ctrl+B or its button put it away.
    void showBestScores();
    void closeBestScores();
    void lookAtBestScores();
    // Symbols on the pieces on and off, remembered in the settings; the board shows it at once.
    void toggleSymbols();
    void showAbout();
    // Help > Writing Games: the rules author's page in the desktop's viewer; when it cannot be
    // opened, the help window tells why and where the page is.
    void openWritingGames();
    void writingGamesViewerEnded(Sint32 status);
    void tellWhereWritingGamesIs(const std::string& problem, const std::string& path);
    void checkUserEvents();
    // The event tick runs while the game has something to do: after every input and every
    // start, until a tick leaves no event queued; at rest nothing wakes the program.
    void eventTick();
    void wakeEventTick();
    void closePopup();
    // Puts the help away and gives the keyboard back to the game window, or the main window.
    void closeHelp();
    void runCommands(const std::vector<ShellCommand>& commands);
    void drawWindows();
    // Each window's title names the game it shows: the chosen one, the running one.
    void nameWindows();
    // Playing what the engine showed: the steps due now; the steps handed over, painted in the
    // game window; the alert's panel over the last frame, and its answer. gameReady finishes a
    // flash or a fall at once before the game takes something new; false while an alert waits.
    void playShow();
    void paintSteps(const std::vector<ShowStep>& steps);
    AlertLayout alertLayout() const;
    void drawAlertPanel();
    void answerAlert();
    bool gameReady();
    // A game window input while an alert is up: Return, Space, Esc or a click on the button
    // answer it; anything else is ignored.
    void alertInput(const CurrentEvent& input);
    std::string menuSignature() const;
    // The number of the chosen game's board being played, for the main window; 0 for none.
    std::uint32_t shownBoardNumber() const;
    void copyBoardNumber() const;
    // Reads the rules file again when it changed on disk.
    void reloadRulesWhenChanged();
    // The kernel tells when the rules file changes; where it cannot, the file is looked at
    // each second.
    void watchRulesFile();

    std::unique_ptr<MyWindow> gameWindow;
    std::unique_ptr<GameView> view_;
    ShowQueue show_;
    std::unique_ptr<ShowRecorder> recorder_;
    SettingsFile settings_{tolvarFolderPath()};
    std::unique_ptr<SoundEffects> sound_;  // made at start-up, with the audio device
    GameInfo shownGame_;  // the last frame of the board painted
    std::unique_ptr<Engine> engine_;
    GameLibrary library_;
    RulesWatch rules_;
    std::unique_ptr<FileWatch> rulesFileWatch_;
    Timers::Id rulesLookTimer_ = 0;  // only where rulesFileWatch_ cannot watch
    std::string startTitle_;  // the game to start at once
    std::optional<std::uint32_t> startBoard_;  // and its board
    BestScoresFile bestScores_{tolvarFolderPath()};
    GameOptionsPanel gameOptions_{settings_};  // each game's board choices, remembered in settings_
    ActionsMenu menu_;
    std::unique_ptr<MainWindow> window;
    std::unique_ptr<ActionsPopup> popup_;
    std::unique_ptr<HelpWindow> helpWindow_;
    std::unique_ptr<BestScoresWindow> bestScoresWindow_;
    std::unique_ptr<FileWatch> bestScoresWatch_;  // while bestScoresWindow_ is open
    PageOpener pageOpener_;
    std::string writingGamesPath_;  // the page given to the viewer last

    Timers timers_;
    Timers::Id eventTimer = 0;
    bool eventTickSuspended_ = false;  // the game window is hidden
    bool userEventTimer = false;  // the input poll: after every event and every tick
    Timers::Id scoresTimer = 0;
    Value scoresList_;

    std::string interfaceFont_;  // the font file of the main window and the pop-up
    std::vector<BoardCell> hint_;  // outlined until the next input
    std::string hintNote_;         // said over the board until the next input
    struct PointerPreview {
        std::optional<BoardCell> cell;                     // where the pointer was last seen
        std::optional<std::pair<float, float>> pressedAt;  // the press of a drag
        std::vector<BoardCell> lit;                        // the cells the move would take
        std::string label;                                 // and what it would bring
    };
    PointerPreview pointer_;
    SavedGamesFile savedGames_{tolvarFolderPath()};
    std::map<std::string, Value> saved_;          // the saved games offered, by title
    std::map<std::string, Value> known_;          // each title's entry in the file, as this copy last saw it
    std::map<std::string, std::string> refused_;  // why a saved game cannot be continued, by title
    std::string continueNote_;                    // why the last Continue could not be, or a save's news
    bool quit_ = false;
    int mainFrames_ = 0;   // frames of the main window still to draw
    int popupFrames_ = 0;  // frames of the "Actions" pop-up still to draw
    int helpFrames_ = 0;   // frames of the help window still to draw
    int bestScoresFrames_ = 0;  // frames of the best-score window still to draw
    static constexpr float kInterfaceFontPixels = 17.0f;
    static constexpr const char* kSymbolsSetting = "Symbols";  // the settings' switch of symbols on pieces
    static constexpr int kMainWindowFramesPerChange = 3;  // ImGui settles hover and click states in a few frames
    std::string lastMenuSignature_;
};

}  // namespace tolvar
