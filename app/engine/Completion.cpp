#include "engine/Completion.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "engine/Board.h"
#include "engine/EventQueue.h"

namespace tolvar {

namespace {
const SupportedUserEvent* userEventOfType(const GameInfo& game, std::uint32_t type) {
    for (const SupportedUserEvent* u = game.userEvents.get(); u; u = u->next.get())
        if (u->userEventType == type) return u;
    return nullptr;
}
}  // namespace

BoardPiece* findRegionMove(const Board& board, std::uint32_t minimumPieces) {
    Flags flags = board.makeFlags();
    for (int x = 0; x < board.width(); ++x) {
        for (int y = 0; y < board.height(); ++y) {
            BoardPiece& piece = board.getBoardPieceAtX(x, y);
            if (piece.pieceID != 0 && board.getRegionColorCountForPiece(piece, flags) >= minimumPieces)
                return &piece;
            flags.clear();
        }
    }
    return nullptr;
}

std::optional<LineMove> findLineMove(const Board& board, std::uint32_t limit) {
    const int w = board.width(), h = board.height();
    // Only the lengths of the runs matter here, so they are read without flags.
    for (int x = 0; x < w; ++x) {
        for (int y = 0; y < h; ++y) {
            BoardPiece& p = board.getBoardPieceAtX(x, y);
            if (p.pieceID == 0) continue;
            if (board.straightRunLength(p) > limit) return LineMove{&p, nullptr};
            // Neighbours in the order left, right, above, below.
            const std::array<std::array<int, 2>, 4> steps{{{-1, 0}, {1, 0}, {0, 1}, {0, -1}}};
            for (const auto& step : steps) {
                const int qx = x + step[0], qy = y + step[1];
                if (qx < 0 || qx >= w || qy < 0 || qy >= h) continue;
                BoardPiece& q = board.getBoardPieceAtX(qx, qy);
                // Swapping two pieces of one colour changes nothing.
                if (q.pieceID == 0 || q.colorIndex == p.colorIndex) continue;
                std::swap(p.colorIndex, q.colorIndex);
                const std::uint32_t run = board.straightRunLength(p);
                std::swap(p.colorIndex, q.colorIndex);
                if (run > limit) return LineMove{&p, &q};
            }
        }
    }
    return std::nullopt;
}

namespace {
BoardCell cellOf(const BoardPiece& piece) { return {piece.x, piece.y}; }

// The first piece and neighbour of another colour whose swap gives either of them a colour
// region of at least minimumPieces (joins true), else the first two neighbours of different
// colours, a swap that only moves the pieces on (joins false).
struct GroupingSwap {
    LineMove move;
    bool joins = false;
};
std::optional<GroupingSwap> findGroupingSwap(const Board& board, std::uint32_t minimumPieces) {
    std::optional<GroupingSwap> anySwap;
    const int w = board.width(), h = board.height();
    Flags flags = board.makeFlags();
    auto regionOf = [&](const BoardPiece& piece) {
        const std::uint32_t n = board.getRegionColorCountForPiece(piece, flags);
        flags.clear();
        return n;
    };
    for (int x = 0; x < w; ++x) {
        for (int y = 0; y < h; ++y) {
            BoardPiece& p = board.getBoardPieceAtX(x, y);
            if (p.pieceID == 0) continue;
            for (const auto& [dx, dy] : {std::pair{1, 0}, {0, 1}}) {
                const int qx = x + dx, qy = y + dy;
                if (qx >= w || qy >= h) continue;
                BoardPiece& q = board.getBoardPieceAtX(qx, qy);
                if (q.pieceID == 0 || q.colorIndex == p.colorIndex) continue;
                std::swap(p.colorIndex, q.colorIndex);
                const bool joins = regionOf(p) >= minimumPieces || regionOf(q) >= minimumPieces;
                std::swap(p.colorIndex, q.colorIndex);
                if (joins) return GroupingSwap{LineMove{&p, &q}, true};
                if (!anySwap) anySwap = GroupingSwap{LineMove{&p, &q}, false};
            }
        }
    }
    return anySwap;
}
}  // namespace

Hint findHint(GameInfo& game, const GameOutput& out) {
    if (!game.hasBoard()) return {};
    Board board(game, out);
    if (const SupportedUserEvent* select = userEventOfType(game, kUserEventSelectColorRegion)) {
        if (const BoardPiece* piece = findRegionMove(board, select->minimumPieces)) {
            Flags flags = board.makeFlags();
            board.getRegionColorCountForPiece(*piece, flags);
            Hint hint;
            for (const std::uint32_t id : flags.setNumbers())
                if (const BoardPiece* p = board.getPieceByID(id)) hint.cells.push_back(cellOf(*p));
            return hint;
        }
    }
    if (const SupportedUserEvent* swap = userEventOfType(game, kUserEventSwapAdjacent)) {
        if (game.setupMaxLinearColors != 0) {
            const std::optional<LineMove> move = findLineMove(board, game.setupMaxLinearColors);
            if (move && move->partner) return {{cellOf(*move->piece), cellOf(*move->partner)}};
            if (move) return {{cellOf(*move->piece)}};
            return {};
        }
        const GameAction* trigger = swap->triggerAction.get();
        const std::int32_t least = trigger ? trigger->minPieces : 0;
        if (const auto found = findGroupingSwap(board, static_cast<std::uint32_t>(least > 1 ? least : 2)))
            return {{cellOf(*found->move.piece), cellOf(*found->move.partner)}, found->joins};
    }
    return {};
}

void Completion::performActionCheckForGameCompletion() {
    GameInfo& game = ctx_.game();
    Board board(game, ctx_.out);
    bool done = true;
    for (const CompletionCriterion* c = game.completionCriteria.get(); c; c = c->next.get()) {
        if (c->completionType != kCompletionNoMovesLeft) continue;
        if (const SupportedUserEvent* select = userEventOfType(game, kUserEventSelectColorRegion))
            if (findRegionMove(board, select->minimumPieces)) done = false;
        if (userEventOfType(game, kUserEventSwapAdjacent)) {
            std::array<std::uint32_t, 256> perColor{};
            for (const BoardPiece& piece : game.board)
                if (piece.pieceID != 0) ++perColor[piece.colorIndex];
            int many = 0, present = 0;
            for (std::uint32_t n : perColor) {
                if (n > 1) ++many;
                if (n > 0) ++present;
            }
            done = many == 0 || (many == 1 && present == 1);
            if (!done && game.setupMaxLinearColors != 0) {
                if (findLineMove(board, game.setupMaxLinearColors)) {
                    done = false;
                } else {
                    done = true;
                    ctx_.view.drawBoard(ctx_.game());
                }
            }
        }
    }
    if (done) EventQueue(game).queueCopyOfEvent(kEventNoMovesLeft);
}

namespace {
// An entry's score as the table compares it: its 32-bit "Score", 0 when it has none.
std::uint64_t storedScore(const Value& entry) {
    std::int32_t stored = 0;
    if (const Dictionary* d = entry.asDictionary())
        if (const Value* v = d->find("Score")) stored = v->intValue().value_or(0);
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(stored));
}
}  // namespace

void sortBestScores(Array& scores, bool lowerIsBetter) {
    std::stable_sort(scores.begin(), scores.end(), [lowerIsBetter](const Value& a, const Value& b) {
        return lowerIsBetter ? storedScore(a) < storedScore(b) : storedScore(a) > storedScore(b);
    });
}

int bestScoreInsertionIndex(const Array& scores, std::uint64_t score, bool lowerIsBetter, const GameOutput& out) {
    std::size_t i = 0;
    for (; i < scores.size() && i < kBestScoresKept; ++i) {
        const std::uint64_t entryScore = storedScore(scores[i]);
        if (lowerIsBetter && score < entryScore) return static_cast<int>(i);
        if (!lowerIsBetter && score > entryScore) {
            out.print("got on list at index %d, score %d\n", static_cast<int>(i),
                        static_cast<int>(static_cast<std::int32_t>(static_cast<std::uint32_t>(score))));
            return static_cast<int>(i);
        }
    }
    return i < kBestScoresKept ? static_cast<int>(i) : -1;
}

void BestScores::performActionCheckBestScores(const GameAction& action) {
    GameInfo& game = ctx_.game();
    const std::uint64_t score = game.score;
    const bool lowerIsBetter = action.lowerIsBetter != 0;
    const EnteredScore entered = ctx_.host.scoreStore().enterScore(bestScoresTableName(game, ctx_.options), [&](Array& scores) {
        // A table put out of order by hand is put back in order first, so the score goes where it belongs.
        sortBestScores(scores, lowerIsBetter);
        const int at = bestScoreInsertionIndex(scores, score, lowerIsBetter, ctx_.out);
        if (at < 0) return at;
        Dictionary entry;
        entry.set("Score", Value::integer(static_cast<std::int32_t>(static_cast<std::uint32_t>(score))));
        entry.set("Date", Value::date(Date::now()));
        scores.insert(scores.begin() + at, Value::dictionary(std::move(entry)));
        return at;
    });

    ctx_.sound(kSoundEnd);
    ctx_.view.displayScores(entered.table, entered.place);

    if (entered.place != -1) {
        ctx_.sound(kSoundBestScore);
        if (const auto& error = entered.saveError) {
            std::fprintf(stderr, "%s: the best score could not be saved (%s)\n", error->path.c_str(),
                         error->reason.c_str());
            ctx_.host.runAlert(" ", "You got one of the best scores, but it could not be saved to \"" +
                                        error->path + "\": " + error->reason + ".",
                               "OK");
        } else {
            ctx_.host.runAlert(" ", "You got one of the best scores!", "Sweet!");
        }
    }
    ctx_.gamePaused = 1;
}

}  // namespace tolvar
