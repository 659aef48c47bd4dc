// The running game's rules and state: GameInfo and the records of its lists.
//
// Every list is a chain through `next` and runs in the reverse of its array in the rules
// dictionary (new records are pushed at the head). Chains own their successors; their
// destructors unlink iteratively, so a rules file with a million actions cannot overflow the
// stack when a game is discarded.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tolvar {

// Event types the engine acts on.
enum EventType : std::uint32_t {
    kEventGameStarted = 8,
    kEventNoMovesLeft = 11,
    kEventPiecesRemoved = 12,
    kEventUserTrigger = 300,  // a user event's trigger action, queued with event ID 200
};
constexpr std::uint32_t kUserTriggerEventID = 200;

// Action types the dispatcher runs.
enum ActionType : std::uint32_t {
    kActionAddScore = 1,             // amount x multiplier onto the score
    kActionAddMultiplier = 2,        // amount onto the score multiplier
    kActionCollapseInDirection = 8,  // pieces fall toward the direction
    kActionSelectColor = 10,         // select pieces by the action's criteria
    kActionCollapseEmptyRows = 19,
    kActionCollapseFullRows = 20,
    kActionCheckForGameCompletion = 21,
    kActionCheckBestScores = 22,
    kActionShowMessage = 23,
    kActionAddVariableToScore = 26,
    kActionGetRemainingPieceCount = 27,
    kActionFillSpacesRandomly = 28,
    kActionResolveMatches = 29,
};

// Every action type the dispatcher runs, smallest first.
inline constexpr ActionType kActionTypes[] = {
    kActionAddScore,          kActionAddMultiplier,          kActionCollapseInDirection,
    kActionSelectColor,       kActionCollapseEmptyRows,      kActionCollapseFullRows,
    kActionCheckForGameCompletion, kActionCheckBestScores,   kActionShowMessage,
    kActionAddVariableToScore, kActionGetRemainingPieceCount, kActionFillSpacesRandomly,
    kActionResolveMatches,
};

// Action types a rules file may name that do nothing when run (3 to 7, 9, 11 to 18); any other
// unlisted type is reported as unknown.
constexpr bool isInertActionType(std::uint32_t type) {
    constexpr std::uint32_t kInertLow = 3, kInertHigh = 18;
    if (type < kInertLow || type > kInertHigh) return false;
    return type != kActionCollapseInDirection && type != kActionSelectColor;
}

// Action criteria bits.
enum ActionCriteria : std::uint32_t {
    kCriteriaDownPiece = 0x01,
    kCriteriaUpPiece = 0x02,
    kCriteriaSwapColorsDiffer = 0x10,
    kCriteriaSwapShapesDiffer = 0x20,
    kCriteriaStraightRuns = 0x40,
};

// Directions of the collapse actions.
enum Direction : std::int32_t { kDirectionDown = 2, kDirectionLeft = 3 };

// User event types that the engine acts on (the others only title a menu item).
enum UserEventType : std::uint32_t {
    kUserEventSwapAdjacent = 3,
    kUserEventSelectColorRegion = 4,
    kUserEventRemoveSelection = 9,
};

// Completion type judged by the completion test.
constexpr std::uint32_t kCompletionNoMovesLeft = 7;

struct GameAction {
    std::uint32_t actionID = 0;
    std::uint32_t actionType = 0;
    std::uint32_t actionCriteria = 0;
    std::int32_t amount = 0;
    std::int32_t direction = 0;
    std::int32_t minPieces = 0;  // compared as unsigned with piece counts
    std::int32_t removePieces = 0;
    std::uint32_t variableID = 0;
    std::uint32_t lowerIsBetter = 0;
    std::optional<std::string> message;
    // Played when the action runs, in place of the sounds the action makes by itself: a game
    // sound's name or a sound file beside the rules file.
    std::optional<std::string> sound;
    std::unique_ptr<GameAction> next;

    GameAction() = default;
    GameAction(const GameAction&) = delete;
    GameAction& operator=(const GameAction&) = delete;
    ~GameAction();
};

// A rules event, and also an entry of the pending-event queue: a queued entry is a copy of a
// rules event that shares its action list.
struct SupportedEvent {
    std::uint32_t eventID = 0;
    std::uint32_t eventType = 0;
    std::shared_ptr<GameAction> actions;  // shared between a rules event and its queued copies
    std::unique_ptr<SupportedEvent> next;

    SupportedEvent() = default;
    SupportedEvent(const SupportedEvent&) = delete;
    SupportedEvent& operator=(const SupportedEvent&) = delete;
    ~SupportedEvent();

    // A new entry with the same eventID, eventType and actions, and no next.
    std::unique_ptr<SupportedEvent> copyForQueue() const;
};

struct SupportedUserEvent {
    std::uint32_t userEventID = 0;
    std::uint32_t userEventType = 0;
    std::int8_t userEventCharacter = 0;  // 0 = no key
    std::uint32_t minimumPieces = 0;
    std::shared_ptr<GameAction> triggerAction;  // one action (its next is empty), or none
    std::unique_ptr<SupportedUserEvent> next;

    SupportedUserEvent() = default;
    SupportedUserEvent(const SupportedUserEvent&) = delete;
    SupportedUserEvent& operator=(const SupportedUserEvent&) = delete;
    ~SupportedUserEvent();
};

struct CompletionCriterion {
    std::uint32_t completionID = 0;
    std::uint32_t completionType = 0;
    std::uint32_t completionValue = 0;
    std::unique_ptr<CompletionCriterion> next;

    CompletionCriterion() = default;
    CompletionCriterion(const CompletionCriterion&) = delete;
    CompletionCriterion& operator=(const CompletionCriterion&) = delete;
    ~CompletionCriterion();
};

struct GameVariable {
    std::uint32_t variableID = 0;
    std::uint64_t variableValue = 0;
    std::unique_ptr<GameVariable> next;

    GameVariable() = default;
    GameVariable(const GameVariable&) = delete;
    GameVariable& operator=(const GameVariable&) = delete;
    ~GameVariable();
};

// One cell of the board. The board is stored column by column: cell (x, y) is element
// x * boardHeight + y.
struct BoardPiece {
    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    std::uint8_t colorIndex = 0;
    std::uint8_t shapeIndex = 0;
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t pieceID = 0;  // 0 = empty cell
    std::uint8_t selected = 0;

    bool operator==(const BoardPiece&) const = default;
};

// The colour of the outline round a selected piece; the removal flash changes it for six frames.
struct SelectColor {
    float red, green, blue;
};
inline constexpr SelectColor kDefaultSelectColor{0.5f, 0.1f, 0.1f};

struct GameInfo {
    std::uint8_t boardHeight = 0;
    std::uint8_t boardWidth = 0;
    std::uint8_t hasLauncher = 0;
    std::vector<BoardPiece> board;  // empty until the board is set up
    // The cell of each piece number, as last seen: the board's lookup by number checks the cell
    // before trusting it and rebuilds this when it is stale.
    std::vector<std::uint32_t> cellOfPiece;
    std::uint8_t numColors = 0;
    std::uint8_t numShapes = 0;
    std::uint8_t colorsMatchShapes = 0;
    std::uint8_t squareShapes = 0;
    std::uint8_t setupRandomFill = 0;
    std::uint8_t holesAllowed = 0;
    std::uint8_t setupMaxLinearColors = 0;
    std::uint8_t setupMaxLinearShapes = 0;
    std::uint64_t score = 0;
    std::uint64_t scoreMultiplier = 0;
    std::string gameName;
    std::string descriptionText;
    std::unique_ptr<SupportedEvent> eventQueue;
    std::unique_ptr<SupportedEvent> events;
    std::unique_ptr<SupportedUserEvent> userEvents;
    std::unique_ptr<CompletionCriterion> completionCriteria;
    std::unique_ptr<GameVariable> variables;
    SelectColor selectColor = kDefaultSelectColor;

    bool hasBoard() const { return !board.empty(); }
};

// A game of its own with the same rules and state: its chains are copied in their order, and
// the action lists are shared, as a pending entry shares its rules event's list.
std::unique_ptr<GameInfo> copyOfGame(const GameInfo& game);

}  // namespace tolvar
