#include "engine/UserInput.h"

#include "engine/BoardNumbers.h"
#include "engine/EventQueue.h"

namespace tolvar {

std::int8_t removeSelectionKey(const GameInfo& game) {
    for (const SupportedUserEvent* u = game.userEvents.get(); u; u = u->next.get()) {
        if (u->userEventType != kUserEventRemoveSelection || u->userEventCharacter == 0) continue;
        const SupportedUserEvent* first = game.userEvents.get();
        while (first->userEventCharacter != u->userEventCharacter) first = first->next.get();
        return first == u ? u->userEventCharacter : 0;
    }
    return 0;
}

const SupportedUserEvent* UserInput::mouseUpIsUserAction() const {
    for (const SupportedUserEvent* u = ctx_.game().userEvents.get(); u; u = u->next.get())
        if (u->userEventType == kUserEventSelectColorRegion ||
            u->userEventType == kUserEventSwapAdjacent)
            return u;
    return nullptr;
}

const SupportedUserEvent* UserInput::charIsUserAction(std::int8_t character) const {
    for (const SupportedUserEvent* u = ctx_.game().userEvents.get(); u; u = u->next.get())
        if (u->userEventCharacter == character) return u;
    return nullptr;
}

const SupportedUserEvent* UserInput::isUserEventSupported(std::uint32_t userEventType) const {
    for (const SupportedUserEvent* u = ctx_.game().userEvents.get(); u; u = u->next.get())
        if (u->userEventType == userEventType) return u;
    return nullptr;
}

void UserInput::restartGame() {
    GameInfo& game = ctx_.game();
    ctx_.releaseBoard();
    game.score = 0;
    game.scoreMultiplier = 1;
    if (ctx_.host.scoresTimerRunning()) ctx_.host.stopScoresTimer();
    ctx_.host.resetProjection();
    dealBoard(ctx_, pickBoardNumber(ctx_));
    ++ctx_.boardsDealt;
    ctx_.view.drawBoard(ctx_.game());
    ctx_.gameStarted = 1;
    ctx_.gamePaused = 0;
}

std::optional<CurrentEvent> UserInput::newEvent() {
    if (!ctx_.hasGame()) return std::nullopt;
    const CurrentEvent event = current_;
    if (ctx_.gameStarted != 0) return std::nullopt;
    if (!remember(event)) return std::nullopt;
    return event;
}

bool UserInput::remember(const CurrentEvent& event) {
    const std::int64_t t = event.type;
    const std::uint16_t k = t == kEventTypeKeyDown ? event.keyCode : 1;
    const bool isNew = t != prevEventType_ || (t == kEventTypeKeyDown && k != prevKeyCode_);
    prevEventType_ = t;
    if (t == kEventTypeKeyDown) prevKeyCode_ = k;
    return isNew;
}

void UserInput::skipCurrentEvent() { remember(current_); }

void UserInput::handleEvent(const CurrentEvent& event) {
    Board board(ctx_.game(), ctx_.out);
    if (event.type == kEventTypeMouseDown) {
        ctx_.downPiece = board.getBoardPieceAtWindowX(event.x, event.y);
        if (ctx_.downPiece && ctx_.downPiece->pieceID != 0) {
            if (const SupportedUserEvent* u = mouseDownIsUserAction()) processUserEvent(*u);
            if (isUserEventSupported(kUserEventSwapAdjacent) && ctx_.downPiece)
                ctx_.downPiece->selected = 1;
        }
    } else if (event.type == kEventTypeMouseUp) {
        ctx_.upPiece = board.getBoardPieceAtWindowX(event.x, event.y);
        if (ctx_.upPiece && ctx_.upPiece->pieceID != 0)
            if (const SupportedUserEvent* u = mouseUpIsUserAction()) processUserEvent(*u);
    } else if (event.type == kEventTypeKeyDown) {
        const std::int8_t c = firstCharacter(event);
        if (const SupportedUserEvent* u = charIsUserAction(c); u && ctx_.gamePaused == 0)
            processUserEvent(*u);
        if (event.keyCode == kKeyCodeEscape) restartGame();
        if (c == 32 && ctx_.host.scoresTimerRunning()) ctx_.host.stopScoresTimer();
    }
}

void UserInput::checkUserEvents() {
    if (const std::optional<CurrentEvent> event = newEvent()) handleEvent(*event);
}

void UserInput::processUserEvent(const SupportedUserEvent& u) {
    GameInfo& game = ctx_.game();
    if (!game.hasBoard()) return;
    Board board(game, ctx_.out);
    // The trigger belongs to the rules; hold it while the board changes.
    const std::shared_ptr<GameAction> trigger = u.triggerAction;
    bool done = false;
    switch (u.userEventType) {
        case kUserEventSwapAdjacent: {
            std::uint32_t count = 0;
            BoardPiece* first = board.getNthSelectedPiece(1, count);
            if (count == 2) {
                std::uint32_t again = 0;
                ctx_.downPiece = first;
                ctx_.upPiece = board.getNthSelectedPiece(2, again);
            }
            BoardPiece* a = ctx_.downPiece;
            BoardPiece* b = ctx_.upPiece;
            if (!a || !b || a == b) return;
            const int dx = static_cast<int>(a->x) - static_cast<int>(b->x);
            const int dy = static_cast<int>(a->y) - static_cast<int>(b->y);
            const bool adjacent = ((dx == 1 || dx == -1) && dy == 0) || ((dy == 1 || dy == -1) && dx == 0);
            const bool allowed =
                !trigger ||
                ((trigger->actionCriteria & kCriteriaSwapColorsDiffer) && a->colorIndex != b->colorIndex) ||
                ((trigger->actionCriteria & kCriteriaSwapShapesDiffer) && a->shapeIndex != b->shapeIndex);
            if (adjacent && allowed) {
                BoardActions::swapAppearance(*a, *b);
                ctx_.sound(kSoundSwap);
                done = true;
            }
            a->selected = 0;
            b->selected = 0;
            ctx_.view.drawBoard(ctx_.game());
            break;
        }
        case kUserEventSelectColorRegion: {
            if (!ctx_.upPiece) return;  // no piece to act on
            Flags flags = board.makeFlags();
            const std::uint32_t n = board.getRegionColorCountForPiece(*ctx_.upPiece, flags);
            if (n >= u.minimumPieces) {
                done = true;
                flags.clear();
                const bool selecting = ctx_.upPiece->selected == 0;
                if (selecting)
                    board.selectRegionColorPieces(*ctx_.upPiece, flags);
                else
                    board.deSelectRegionColorPieces(*ctx_.upPiece, flags);
                ctx_.sound(selecting ? kSoundSelect : kSoundDeselect);
                ctx_.view.drawBoard(ctx_.game());
            }
            break;
        }
        case kUserEventRemoveSelection: {
            if (BoardActions::emptySelectedPieces(ctx_, false)) {
                done = true;
                EventQueue(game).queueCopyOfEvent(kEventPiecesRemoved);
            }
            break;
        }
        default:
            break;
    }
    if (done && trigger) {
        auto entry = std::make_unique<SupportedEvent>();
        entry->eventID = kUserTriggerEventID;
        entry->eventType = kEventUserTrigger;
        entry->actions = trigger;
        EventQueue(game).addEventToQueue(std::move(entry));
    }
}

}  // namespace tolvar
