#include "engine/MoveHistory.h"

namespace tolvar {

void MoveHistory::beforeInput(const EngineContext& ctx) {
    if (!open_) open_ = Move{takeSnapshot(ctx), {}};
}

void MoveHistory::afterInput(const EngineContext& ctx, const PlayerInput& input, bool redoing) {
    if (!open_) return;
    open_->inputs.push_back(input);
    if (!input.fromMenu && input.event.type == kEventTypeMouseDown) return;
    Move move = std::move(*open_);
    open_.reset();
    if (move.before.sameGameAs(ctx)) return;
    if (!redoing) {
        for (const Move& m : undone_) cellsKept_ -= m.before.board.size();
        undone_.clear();
    }
    cellsKept_ += move.before.board.size();
    done_.push_back(std::move(move));
    keepWithinCap();
}

void MoveHistory::keepWithinCap() {
    while (cellsKept_ > kCellsKept && done_.size() > 1) {
        cellsKept_ -= done_.front().before.board.size();
        done_.pop_front();
    }
}

void MoveHistory::restore(SavedMoves moves) {
    forget();
    for (Move& m : moves.done) {
        cellsKept_ += m.before.board.size();
        done_.push_back(std::move(m));
    }
    for (const Move& m : moves.undone) cellsKept_ += m.before.board.size();
    undone_ = std::move(moves.undone);
    keepWithinCap();
}

const Move* MoveHistory::undo() {
    open_.reset();
    if (done_.empty()) return nullptr;
    undone_.push_back(std::move(done_.back()));
    done_.pop_back();
    return &undone_.back();
}

std::optional<Move> MoveHistory::takeRedo() {
    open_.reset();
    if (undone_.empty()) return std::nullopt;
    Move move = std::move(undone_.back());
    undone_.pop_back();
    cellsKept_ -= move.before.board.size();
    return move;
}

void MoveHistory::forget() {
    open_.reset();
    done_.clear();
    undone_.clear();
    cellsKept_ = 0;
}

}  // namespace tolvar
