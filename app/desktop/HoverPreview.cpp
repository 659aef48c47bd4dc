// What the move under the pointer would bring, shown before it is made: in a game that selects
// regions, the region a click would take lit and its points and pieces by the pointer; in a swap
// game, the same for the swap while a piece is dragged. The figures are the engine's, found by
// playing the move on a copy of the game; they are worked out only when the pointer goes into
// another cell, so a pointer at rest costs nothing.
#include "desktop/TolvarAppDelegate.h"

#include "core/Translate.h"
#include "presentation/ScoreText.h"

namespace tolvar {

namespace {
bool takesUserEvent(const GameInfo& game, std::uint32_t type) {
    for (const SupportedUserEvent* u = game.userEvents.get(); u; u = u->next.get())
        if (u->userEventType == type) return true;
    return false;
}
}  // namespace

void TolvarAppDelegate::followPointer(const CurrentEvent& event) {
    const std::optional<BoardCell> cell = engine_ ? engine_->cellAt(event.x, event.y) : std::nullopt;
    switch (event.type) {
        case kEventTypeMouseMoved: break;
        case kEventTypeMouseDown:
            // The click's own move is the game's now; a swap game's drag starts here.
            pointer_.pressedAt = {event.x, event.y};
            pointer_.cell = cell;
            dropPreview();
            return;
        case kEventTypeMouseUp:
            pointer_.pressedAt.reset();
            pointer_.cell = cell;
            dropPreview();
            return;
        default:  // a key or the right button: the game may change under the preview
            dropPreview();
            return;
    }
    if (cell == pointer_.cell) return;
    pointer_.cell = cell;
    const std::optional<MovePreview> preview = cell ? previewAt(event.x, event.y) : std::nullopt;
    if (!preview) {
        dropPreview();
        return;
    }
    pointer_.lit = preview->cells;
    pointer_.label = movePreviewText(
        static_cast<std::int64_t>(preview->score) - static_cast<std::int64_t>(runningGame()->score), preview->pieces);
    gameWindow->makeCurrentContext();
    view_->drawBoard(shownGame_);
}

void TolvarAppDelegate::pointerLeft() {
    pointer_.cell.reset();
    pointer_.pressedAt.reset();
    dropPreview();
}

std::optional<MovePreview> TolvarAppDelegate::previewAt(float x, float y) const {
    // Only over a board at rest that takes moves: no show playing, no alert, no menu open.
    if (!gameWindow || !show_.idle() || !playing() || (popup_ && popup_->isOpen()) || runningGame()->eventQueue)
        return std::nullopt;
    const bool swaps = takesUserEvent(*runningGame(), kUserEventSwapAdjacent);
    std::optional<MovePreview> preview;
    if (pointer_.pressedAt && swaps)
        preview = engine_->previewDrag(pointer_.pressedAt->first, pointer_.pressedAt->second, x, y);
    else if (!pointer_.pressedAt)
        preview = engine_->previewClick(x, y);
    // A swap game's click that only picks a piece up brings nothing to show.
    if (preview && swaps && preview->pieces == 0 && preview->score == runningGame()->score) return std::nullopt;
    return preview;
}

bool TolvarAppDelegate::previewShown() const { return !pointer_.lit.empty() || !pointer_.label.empty(); }

void TolvarAppDelegate::forgetPreview() {
    pointer_.lit.clear();
    pointer_.label.clear();
}

void TolvarAppDelegate::dropPreview() {
    if (!previewShown()) return;
    forgetPreview();
    // The cells and the label's place drawn again as the board is, at once while it rests; a
    // show playing draws them with its next frame.
    if (gameWindow && gameWindow->isVisible() && show_.idle() && playing()) {
        gameWindow->makeCurrentContext();
        view_->drawBoard(shownGame_);
    }
}

BoardMarks TolvarAppDelegate::boardMarks() const {
    BoardMarks marks{engine_ ? engine_->cursor() : std::nullopt, hint_, pointer_.lit, std::nullopt};
    if (!pointer_.label.empty() && pointer_.cell) marks.label = BoardLabel{pointer_.label, pointer_.cell};
    else if (!hintNote_.empty()) marks.label = BoardLabel{tr(hintNote_.c_str()), std::nullopt};
    return marks;
}

}  // namespace tolvar
