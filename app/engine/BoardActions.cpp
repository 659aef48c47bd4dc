#include "engine/BoardActions.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "engine/BoardSetup.h"
#include "engine/RandomSequence.h"

namespace tolvar {

void BoardActions::wholeMove(BoardPiece& dest, const BoardPiece& source) {
    const std::uint32_t x = dest.x, y = dest.y;
    dest = source;
    dest.x = x;
    dest.y = y;
}

void BoardActions::rowShift(BoardPiece& dest, const BoardPiece& source) {
    Board::copyPieceInfo(dest, source);
    dest.pieceID = source.pieceID;
}

void BoardActions::swapAppearance(BoardPiece& a, BoardPiece& b) {
    std::swap(a.red, b.red);
    std::swap(a.green, b.green);
    std::swap(a.blue, b.blue);
    std::swap(a.colorIndex, b.colorIndex);
    std::swap(a.shapeIndex, b.shapeIndex);
}

void BoardActions::performActionCollapseInDirection(int direction) {
    if (direction != kDirectionDown) return;
    Board b = board();
    const int w = b.width(), h = b.height();
    bool moved = true, landed = false;
    while (moved) {  // one pass per wave of moves, until nothing moves
        moved = false;
        for (int x = 0; x < w; ++x) {
            int y = 0;
            while (y < h - 1) {
                if (b.getBoardPieceAtX(x, y).pieceID != 0) {
                    ++y;
                    continue;
                }
                int k = y;
                for (; k < h - 1; ++k) {
                    BoardPiece& source = b.getBoardPieceAtX(x, k + 1);
                    if (source.pieceID == 0) continue;
                    ctx_.view.animatePiece(ctx_.game(), source, static_cast<std::uint32_t>(x),
                                           static_cast<std::uint32_t>(k + 1),
                                           static_cast<std::uint32_t>(x),
                                           static_cast<std::uint32_t>(y));
                    wholeMove(b.getBoardPieceAtX(x, y), source);
                    source.pieceID = 0;
                    moved = landed = true;
                    break;
                }
                y = k + 3;
            }
        }
    }
    if (landed) ctx_.sound(kSoundLanding);
}

void BoardActions::performActionCollapseEmptyRows(int direction) {
    Board b = board();
    const int w = b.width(), h = b.height();
    bool landed = false;
    if (direction == kDirectionLeft) {
        for (int x = 0; x < w - 1; ++x) {
            bool empty = true;
            for (int y = 0; y < h && empty; ++y) empty = b.getBoardPieceAtX(x, y).pieceID == 0;
            if (!empty) continue;
            bool movedPiece = false;
            for (int c = x; c <= w - 2; ++c) {
                for (int y = 0; y < h; ++y) {
                    const BoardPiece& source = b.getBoardPieceAtX(c + 1, y);
                    if (source.pieceID != 0) movedPiece = true;
                    wholeMove(b.getBoardPieceAtX(c, y), source);
                }
            }
            for (int y = 0; y < h; ++y) {
                BoardPiece& last = ctx_.game().board[static_cast<std::size_t>(w - 1) * h + y];
                last.x = static_cast<std::uint32_t>(w - 1);
                last.pieceID = 0;
            }
            if (movedPiece) --x;  // the columns that slid in may be empty too
            landed = landed || movedPiece;
        }
    } else if (direction == kDirectionDown) {
        for (int y = 0; y < h; ++y) {
            bool empty = true;
            for (int x = 0; x < w && empty; ++x) empty = b.getBoardPieceAtX(x, y).pieceID == 0;
            if (!empty) continue;
            bool movedPiece = false;
            for (int r = y; r <= h - 2; ++r) {
                for (int x = 0; x < w; ++x) {
                    const BoardPiece& source = b.getBoardPieceAtX(x, r + 1);
                    if (source.pieceID != 0) movedPiece = true;
                    rowShift(b.getBoardPieceAtX(x, r), source);
                }
            }
            for (int x = 0; x < w; ++x) {
                BoardPiece& top = ctx_.game().board[static_cast<std::size_t>(x) * h + (h - 1)];
                top.y = static_cast<std::uint32_t>(h - 1);
                top.pieceID = 0;
            }
            if (movedPiece) --y;
            landed = landed || movedPiece;
        }
    }
    if (landed) ctx_.sound(kSoundLanding);
}

void BoardActions::performActionCollapseFullRows(int direction) {
    if (direction != kDirectionDown) return;
    Board b = board();
    const int w = b.width(), h = b.height();
    bool landed = false;
    for (int y = 0; y < h; ++y) {
        bool full = true;
        for (int x = 0; x < w && full; ++x) full = b.getBoardPieceAtX(x, y).pieceID != 0;
        if (!full) continue;
        for (int r = y; r <= h - 2; ++r)
            for (int x = 0; x < w; ++x)
                rowShift(b.getBoardPieceAtX(x, r), b.getBoardPieceAtX(x, r + 1));
        for (int x = 0; x < w; ++x) {
            BoardPiece& top = ctx_.game().board[static_cast<std::size_t>(x) * h + (h - 1)];
            top.y = static_cast<std::uint32_t>(h - 1);
            top.pieceID = 0;
        }
        landed = true;
        // The row that came down is examined again; a board of full rows empties from the top,
        // so this ends once the top row (now empty) comes down.
        --y;
    }
    if (landed) ctx_.sound(kSoundLanding);
}

void BoardActions::performActionSelectColor(const GameAction& action) {
    Board b = board();
    const std::uint32_t minPieces = static_cast<std::uint32_t>(action.minPieces);
    bool selected = false;
    if (action.actionCriteria & kCriteriaStraightRuns) {
        auto test = [&](BoardPiece* piece, const char* which) {
            if (!piece) return;
            Flags flags = b.makeFlags();
            const std::uint32_t n = b.getRegionLinearColorCountForPiece(*piece, flags);
            ctx_.out.print("piece count %s = %u, min pieces = %u\n", which, n, minPieces);
            if (n >= minPieces) {
                ctx_.out.print("Selecting flagged %s pieces.\n", which);
                b.selectFlaggedPieces(flags);
                selected = true;
            }
        };
        if (action.actionCriteria & kCriteriaUpPiece) test(ctx_.upPiece, "up");
        if (action.actionCriteria & kCriteriaDownPiece) test(ctx_.downPiece, "down");
        if (!selected) {
            bool swapGame = false;
            for (SupportedUserEvent* u = ctx_.game().userEvents.get(); u && !swapGame;
                 u = u->next.get())
                swapGame = u->userEventType == kUserEventSwapAdjacent;
            if (swapGame && ctx_.downPiece && ctx_.upPiece) {
                swapAppearance(*ctx_.downPiece, *ctx_.upPiece);
                ctx_.sound(kSoundSwap);  // back, as no line was made
                ctx_.downPiece->selected = 0;
                ctx_.upPiece->selected = 0;
            }
        }
    } else {
        auto test = [&](BoardPiece* piece, const char* which) {
            if (!piece) return;
            Flags flags = b.makeFlags();
            const std::uint32_t n = b.getRegionColorCountForPiece(*piece, flags);
            ctx_.out.print("piece count %s = %u, min pieces = %u\n", which, n, minPieces);
            if (n >= minPieces) {
                Flags fresh = b.makeFlags();
                b.selectRegionColorPieces(*piece, fresh);
                selected = true;
            }
        };
        if (action.actionCriteria & kCriteriaUpPiece) test(ctx_.upPiece, "up");
        if (action.actionCriteria & kCriteriaDownPiece) test(ctx_.downPiece, "down");
    }
    if (selected && action.removePieces != 0) flashAndRemove();
}

void BoardActions::flashAndRemove() {
    for (int frame = 0; frame < 6; ++frame) {
        SelectColor& flash = ctx_.game().selectColor;
        flash.red = static_cast<float>(static_cast<long>(ctx_.random.next()) % 100) * 0.01f;
        flash.green = static_cast<float>(static_cast<long>(ctx_.random.next()) % 100) * 0.01f;
        flash.blue = static_cast<float>(static_cast<long>(ctx_.random.next()) % 100) * 0.01f;
        ctx_.view.drawBoard(ctx_.game());
        ctx_.view.pauseForFlash();
    }
    ctx_.game().selectColor = kDefaultSelectColor;
    removeSelectedPieces();
}

bool BoardActions::emptySelectedPieces(EngineContext& ctx, bool printed) {
    Board b(ctx.game(), ctx.out);
    RemovalTally* tally = ctx.tally ? &*ctx.tally : nullptr;
    const bool first = tally && tally->pieces == 0;
    bool any = false;
    for (int x = 0; x < b.width(); ++x) {
        for (int y = 0; y < b.height(); ++y) {
            BoardPiece& piece = b.getBoardPieceAtX(x, y);
            if (piece.selected != 1 || piece.pieceID == 0) continue;
            if (printed)
                ctx.out.print("Removing piece %d at %d,%d\n", static_cast<int>(piece.pieceID),
                              static_cast<int>(piece.x), static_cast<int>(piece.y));
            piece.pieceID = 0;
            piece.selected = 0;
            if (!any) ctx.sound(kSoundRemoval);
            any = true;
            if (!tally) continue;
            ++tally->pieces;
            if (first) tally->firstRemoval.push_back({static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)});
        }
    }
    return any;
}

void BoardActions::removeSelectedPieces() {
    if (emptySelectedPieces(ctx_, true)) EventQueue(ctx_.game()).queueCopyOfEvent(kEventPiecesRemoved);
}

void BoardActions::performActionGetRemainingPieceCount(GameVariable* variable) {
    const std::uint32_t count = board().countPieces();
    if (variable) variable->variableValue = count;
}

void BoardActions::performActionFillSpacesRandomly() {
    GameInfo& game = ctx_.game();
    Board b = board();
    // Free piece numbers are handed out smallest first, in the order the scan meets the holes.
    const std::size_t limit = (static_cast<std::size_t>(game.boardWidth) + 1) * game.boardHeight;
    std::vector<std::uint8_t> used(limit, 0);
    for (const BoardPiece& piece : game.board)
        if (piece.pieceID != 0 && piece.pieceID < limit) used[piece.pieceID] = 1;
    std::size_t nextFree = 1;
    const long colors = game.numColors ? game.numColors : 1;
    const long shapes = game.numShapes ? game.numShapes : 1;
    bool filled = false;
    for (int x = 0; x < b.width(); ++x) {
        for (int y = 0; y < b.height(); ++y) {
            BoardPiece& piece = b.getBoardPieceAtX(x, y);
            if (piece.pieceID != 0) continue;
            while (nextFree < limit && used[nextFree]) ++nextFree;
            const std::uint32_t id = nextFree < limit ? static_cast<std::uint32_t>(nextFree) : 0;
            if (id) used[id] = 1;
            piece.pieceID = id;
            piece.colorIndex = static_cast<std::uint8_t>(static_cast<long>(ctx_.random.next()) % colors + 1);
            piece.shapeIndex = static_cast<std::uint8_t>(static_cast<long>(ctx_.random.next()) % shapes + 1);
            piece.selected = 0;
            setPieceColor(game, piece);
            filled = true;
        }
    }
    if (filled) ctx_.sound(kSoundRefill);
}

void BoardActions::performActionResolveMatches() {
    GameInfo& game = ctx_.game();
    Board b = board();
    Flags flags = b.makeFlags();
    for (;;) {
        bool found = false;
        if (game.setupMaxLinearColors != 0) {
            for (int x = 0; x < b.width(); ++x) {
                for (int y = 0; y < b.height(); ++y) {
                    const std::uint32_t n =
                        b.getRegionLinearColorCountForPiece(b.getBoardPieceAtX(x, y), flags);
                    if (n >= static_cast<std::uint32_t>(game.setupMaxLinearColors) + 1) {
                        b.selectFlaggedPieces(flags);
                        found = true;
                    }
                    flags.clear();
                }
            }
        }
        if (!found) break;
        const std::uint32_t before = b.countPieces();
        SupportedUserEvent* swap = nullptr;
        for (SupportedUserEvent* u = game.userEvents.get(); u && !swap; u = u->next.get())
            if (u->userEventType == kUserEventSwapAdjacent) swap = u;
        if (swap && swap->triggerAction) {
            // Hold the list: it belongs to the rules, which outlive this action.
            std::shared_ptr<GameAction> trigger = swap->triggerAction;
            for (const GameAction* a = trigger.get(); a; a = a->next.get()) {
                if (a->removePieces == 0) continue;
                flashAndRemove();
            }
        }
        ctx_.view.drawBoard(ctx_.game());
        // Lines that nothing removes would be found again for ever: stop after such a pass.
        if (b.countPieces() >= before) break;
    }
}

GameVariable* BoardActions::getVariable(std::uint32_t variableID) const {
    if (variableID == 0) return nullptr;
    for (GameVariable* v = ctx_.game().variables.get(); v; v = v->next.get())
        if (v->variableID == variableID) return v;
    return nullptr;
}

}  // namespace tolvar
