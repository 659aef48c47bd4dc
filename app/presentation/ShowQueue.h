// What the game window has still to show of the engine's last operation, and when.
//
// The engine never waits: a tick runs to its end at once, and what it showed on the way (each
// frame of the board, the removal flash's frames, the cells a falling piece passes, the score
// screen, alerts) is appended here in order. The run loop plays the steps with its own clock:
// a step is shown, then held for its time before the next one; an alert is held until the
// player answers it. No SDL and no OpenGL here: the window paints what it is handed.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "core/PropertyList.h"
#include "rules/GameInfo.h"

namespace tolvar {

// How long a frame of the removal flash stays up, and a falling piece in each cell it passes.
inline constexpr double kFlashFrameSeconds = 0.1;
inline constexpr double kFallingStepSeconds = 0.001;

// The walk of a falling piece from (x, y) to (endX, endY), one cell a step: step(fromX, fromY,
// toX, toY) for each. Each coordinate steps toward its end and then stays, so the walk always
// ends, even for an end point off the straight line of the steps.
template <typename Step>
void walkFall(std::uint32_t x, std::uint32_t y, std::uint32_t endX, std::uint32_t endY, Step step) {
    const auto toward = [](std::uint32_t from, std::uint32_t to) { return from < to ? from + 1 : (from > to ? from - 1 : from); };
    do {
        const std::uint32_t fromX = x, fromY = y;
        x = toward(x, endX);
        y = toward(y, endY);
        step(fromX, fromY, x, y);
    } while (x != endX || y != endY);
}

// A frame of the board as drawBoard(game) would draw it, with what places the board in the
// window (a launcher's margin, square cells), so a 2 x 1 board lies where the game's mouse looks.
struct BoardPicture {
    std::uint8_t boardWidth = 0;
    std::uint8_t boardHeight = 0;
    std::uint8_t hasLauncher = 0;
    std::uint8_t squareShapes = 0;
    std::vector<BoardPiece> board;
    std::uint64_t score = 0;
    std::string gameName;
    SelectColor selectColor = kDefaultSelectColor;

    static BoardPicture of(const GameInfo& game);
    // Puts the picture into game's drawn fields (size and placing, board, score, name, outline colour).
    void into(GameInfo& game) const;
};

struct AlertText {
    std::string title;
    std::string message;
    std::string button;
};

struct ShowStep {
    enum class Kind {
        Board,   // board: the whole frame
        Fall,    // piece moves one cell, from (fromX, fromY) to (toX, toY), over the last frame
        Scores,  // the score screen for scores, highlighting row highlight (-1: as before)
        Alert,   // alert, over what is shown, until answered
    };
    Kind kind = Kind::Board;
    double holdSeconds = 0.0;  // how long the step stays before the next one (not for an alert)
    BoardPicture board;
    BoardPiece piece;
    std::uint32_t fromX = 0, fromY = 0, toX = 0, toY = 0;
    Value scores;
    int highlight = -1;
    AlertText alert;
    std::vector<std::string> sounds;  // played as the step shows, in order
};

class ShowQueue {
public:
    // Appends a step. A frame of the board that would be drawn over at once (the last step is a
    // frame held for no time, not yet shown) takes that frame's place.
    void append(ShowStep step);
    // The last step appended is held for seconds (a frame of the flash); nothing without one.
    void holdLast(double seconds);
    // A sound that goes with the next step appended.
    void addSound(std::string sound) { pendingSounds_.push_back(std::move(sound)); }

    // The steps to show at time now, in order: every step whose turn has come. An alert ends
    // the list; it then stays up (alert()) and nothing follows until answer().
    std::vector<ShowStep> takeDue(double now);
    // Everything up to and including the next alert at once (a flash or a fall the player's
    // input cuts short); the whole rest when no alert comes.
    std::vector<ShowStep> takeUntilAlert();
    // Everything left at once, alerts left out (the game window goes away).
    std::vector<ShowStep> takeAll();

    // The alert shown and not yet answered, or nullptr.
    const AlertText* alert() const { return answering_ ? &shownAlert_ : nullptr; }
    // The player answered the alert: what follows plays from now.
    void answer(double now);

    // Nothing left to show and no alert up.
    bool idle() const { return steps_.empty() && !answering_; }
    // Seconds until the next step is due (0: now), or a negative value when none is (nothing
    // left, or an alert waits for its answer).
    double secondsUntilDue(double now) const;

private:
    std::deque<ShowStep> steps_;
    bool started_ = false;  // the first step's time is set
    double dueAt_ = 0.0;    // when the first step of steps_ is due
    bool answering_ = false;
    AlertText shownAlert_;
    std::vector<std::string> pendingSounds_;  // for the next step appended
};

}  // namespace tolvar
