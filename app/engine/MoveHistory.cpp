#include "engine/MoveHistory.h"

namespace tolvar {

void MoveHistory::beforeInput(const EngineContext& ctx, const PlayerInput&) {
    if (!open_) open_ = Move{takeSnapshot(ctx), {}};
}

void MoveHistory::afterInput(const EngineContext& ctx, const PlayerInput& input, bool redoing) {
    if (!open_) return;
    open_->inputs.push_back(input);
    if (!input.fromMenu && input.event.type == kEventTypeMouseDown) return;
    Move move = std::move(*open_);
    open_.reset();
    if (takeSnapshot(ctx).sameGameAs(move.before)) return;
    done_.push_back(std::move(move));
    if (!redoing) undone_.clear();
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
    return move;
}

void MoveHistory::forget() {
    open_.reset();
    done_.clear();
    undone_.clear();
}

}  // namespace tolvar
