// The actions that change the board: falling pieces, closing up empty or full lines,
// selecting what a move joined and removing it with a flash, refilling holes, resolving lines
// and counting the pieces left.
#pragma once

#include <cstdint>

#include "engine/Board.h"
#include "engine/EngineContext.h"
#include "engine/EventQueue.h"

namespace tolvar {

class BoardActions {
public:
    explicit BoardActions(EngineContext& ctx) : ctx_(ctx) {}

    void performActionCollapseInDirection(int direction);
    void performActionCollapseEmptyRows(int direction);
    void performActionCollapseFullRows(int direction);
    void performActionSelectColor(const GameAction& action);
    void performActionGetRemainingPieceCount(GameVariable* variable);
    void performActionFillSpacesRandomly();
    void performActionResolveMatches();
    GameVariable* getVariable(std::uint32_t variableID) const;

    // Removal: empties every selected cell that holds a piece and clears its selection, so a
    // cell emptied once is never removed (nor counted) again. Prints a "Removing piece" line for
    // each when printed is set; returns whether it emptied any piece.
    static bool emptySelectedPieces(EngineContext& ctx, bool printed);
    // emptySelectedPieces with its lines, and the pieces-removed event queued when a piece went.
    void removeSelectedPieces();
    // Six frames of random outline colour, then removeSelectedPieces.
    void flashAndRemove();

private:
    Board board() const { return Board(ctx_.game(), ctx_.out); }
    static void wholeMove(BoardPiece& dest, const BoardPiece& source);
    static void rowShift(BoardPiece& dest, const BoardPiece& source);
    static void swapAppearance(BoardPiece& a, BoardPiece& b);
    friend class UserInput;

    EngineContext& ctx_;
};

}  // namespace tolvar
