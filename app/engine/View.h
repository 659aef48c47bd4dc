// What the engine asks of whatever shows the game: the window records it and plays it afterwards
// with its own clock, the headless runner prints a line or nothing. No call waits.
#pragma once

#include <cstdint>
#include <string>

#include "core/PropertyList.h"
#include "rules/GameInfo.h"

namespace tolvar {

class View {
public:
    virtual ~View() = default;
    // One complete frame of the game (with a board): its pieces, selection outline, score and name.
    virtual void drawBoard(const GameInfo& game) = 0;
    // Moves a copy of piece cell by cell from (startX, startY) to (endX, endY) on screen; the
    // board itself is not changed.
    virtual void animatePiece(const GameInfo& game, const BoardPiece& piece, std::uint32_t startX, std::uint32_t startY,
                              std::uint32_t endX, std::uint32_t endY) = 0;
    // The score screen for a game's best-score array, highlighting row highlight (-1: keep the
    // row highlighted before). Makes sure the score timer runs (through the Host).
    virtual void displayScores(const Value& scores, int highlight) = 0;
    // Empties the piece-sprite cache; forget != 0 marks the slots empty without releasing.
    virtual void clearPieceSprites(int forget) = 0;
    // The frame drawn last is a frame of the removal flash: the window holds it 0.1 s.
    virtual void pauseForFlash() = 0;
    // false while a chain of events runs on past what any real game's does: its flashes and falls
    // are then not held on screen, so a chain that never settles reaches the runaway bound at once.
    virtual void showMotion(bool shown) = 0;
    // A sound that goes with what is drawn next (a game sound's name, or a sound file beside the
    // rules file): the window plays it as it shows that.
    virtual void playSound(const std::string& sound) = 0;
};

}  // namespace tolvar
