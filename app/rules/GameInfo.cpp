#include "rules/GameInfo.h"

namespace tolvar {

namespace {
// Releases a chain of records one by one, so that a long chain never recurses.
template <typename Record>
void unlinkChain(std::unique_ptr<Record>& next) {
    std::unique_ptr<Record> rest = std::move(next);
    while (rest) rest = std::move(rest->next);
}

// A copy of the chain from first, record by record in its order (without recursion);
// copyRecord(record) makes a record's copy without its successors.
template <typename Record, typename CopyRecord>
std::unique_ptr<Record> copyChain(const Record* first, CopyRecord copyRecord) {
    std::unique_ptr<Record> head;
    std::unique_ptr<Record>* tail = &head;
    for (const Record* r = first; r; r = r->next.get()) {
        *tail = copyRecord(*r);
        tail = &(*tail)->next;
    }
    return head;
}
}  // namespace

std::unique_ptr<GameInfo> copyOfGame(const GameInfo& game) {
    auto copy = std::make_unique<GameInfo>();
    copy->boardHeight = game.boardHeight;
    copy->boardWidth = game.boardWidth;
    copy->hasLauncher = game.hasLauncher;
    copy->board = game.board;
    copy->cellOfPiece = game.cellOfPiece;
    copy->numColors = game.numColors;
    copy->numShapes = game.numShapes;
    copy->colorsMatchShapes = game.colorsMatchShapes;
    copy->squareShapes = game.squareShapes;
    copy->setupRandomFill = game.setupRandomFill;
    copy->holesAllowed = game.holesAllowed;
    copy->setupMaxLinearColors = game.setupMaxLinearColors;
    copy->setupMaxLinearShapes = game.setupMaxLinearShapes;
    copy->score = game.score;
    copy->scoreMultiplier = game.scoreMultiplier;
    copy->gameName = game.gameName;
    copy->descriptionText = game.descriptionText;
    const auto event = [](const SupportedEvent& from) { return from.copyForQueue(); };
    copy->eventQueue = copyChain(game.eventQueue.get(), event);
    copy->events = copyChain(game.events.get(), event);
    copy->userEvents = copyChain(game.userEvents.get(), [](const SupportedUserEvent& from) {
        auto to = std::make_unique<SupportedUserEvent>();
        to->userEventID = from.userEventID;
        to->userEventType = from.userEventType;
        to->userEventCharacter = from.userEventCharacter;
        to->minimumPieces = from.minimumPieces;
        to->triggerAction = from.triggerAction;
        return to;
    });
    copy->completionCriteria = copyChain(game.completionCriteria.get(), [](const CompletionCriterion& from) {
        auto to = std::make_unique<CompletionCriterion>();
        to->completionID = from.completionID;
        to->completionType = from.completionType;
        to->completionValue = from.completionValue;
        return to;
    });
    copy->variables = copyChain(game.variables.get(), [](const GameVariable& from) {
        auto to = std::make_unique<GameVariable>();
        to->variableID = from.variableID;
        to->variableValue = from.variableValue;
        return to;
    });
    copy->selectColor = game.selectColor;
    return copy;
}

GameAction::~GameAction() { unlinkChain(next); }
SupportedEvent::~SupportedEvent() { unlinkChain(next); }
SupportedUserEvent::~SupportedUserEvent() { unlinkChain(next); }
CompletionCriterion::~CompletionCriterion() { unlinkChain(next); }
GameVariable::~GameVariable() { unlinkChain(next); }

std::unique_ptr<SupportedEvent> SupportedEvent::copyForQueue() const {
    auto entry = std::make_unique<SupportedEvent>();
    entry->eventID = eventID;
    entry->eventType = eventType;
    entry->actions = actions;
    return entry;
}

}  // namespace tolvar
