#include "engine/SavedGame.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <limits>

#include "core/PlistFile.h"
#include "engine/BoardNumbers.h"
#include "engine/SavedHistory.h"
#include "core/PlistText.h"

namespace tolvar {

namespace {
constexpr std::int64_t kFormat = 1;
constexpr std::size_t kCellNumbers = 9;  // piece, colour, shape, selected, x, y, red, green, blue
// A game is saved between two ticks, when its queue holds only what the player's inputs queued
// since the last one: a removal and a user event's trigger an input at most, and the desktop
// ticks thirty times a second. No real game comes near this many.
constexpr std::size_t kMaxPendingEvents = 16;
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();

Value number(std::int64_t n) { return Value::integer(n); }
Value bits(float f) { return number(std::bit_cast<std::uint32_t>(f)); }

// Where a pending event's actions come from: a rules event or a user event's trigger, by its
// place in the game's list.
struct Source {
    const char* key;
    std::int64_t index;
};

std::optional<Source> sourceOf(const GameInfo& game, const PendingEvent& p) {
    std::int64_t i = 0;
    for (const SupportedEvent* e = game.events.get(); e; e = e->next.get(), ++i)
        if (e->actions == p.actions) return Source{"RulesEvent", i};
    i = 0;
    for (const SupportedUserEvent* u = game.userEvents.get(); u; u = u->next.get(), ++i)
        if (u->triggerAction == p.actions) return Source{"TriggerOf", i};
    return std::nullopt;
}

std::shared_ptr<GameAction> actionsAt(const GameInfo& game, const std::string& key, std::int64_t index) {
    std::int64_t i = 0;
    if (key == "RulesEvent") {
        for (const SupportedEvent* e = game.events.get(); e; e = e->next.get(), ++i)
            if (i == index) return e->actions;
    } else {
        for (const SupportedUserEvent* u = game.userEvents.get(); u; u = u->next.get(), ++i)
            if (i == index) return u->triggerAction;
    }
    return nullptr;
}

// Reads the saved game's numbers; the first missing or mistyped one is remembered.
class Reader {
public:
    explicit Reader(const Dictionary& d) : d_(d) {}

    std::int64_t integer(const char* key) { return integerIn(d_, key); }
    // A number that must lie within [low, high]; what a real game never holds is refused.
    std::int64_t within(const char* key, std::int64_t low, std::int64_t high) {
        const std::int64_t n = integer(key);
        if (n < low || n > high)
            fail("\"" + std::string(key) + "\" is " + std::to_string(n) + ", not within " + std::to_string(low) +
                 " to " + std::to_string(high));
        return n;
    }
    std::int64_t integerIn(const Dictionary& d, const char* key) {
        const Value* v = d.find(key);
        if (v && v->isInteger()) return *v->asInteger();
        fail(std::string("\"") + key + "\" is missing or not a whole number");
        return 0;
    }
    const Array& array(const char* key) {
        static const Array kNone;
        const Value* v = d_.find(key);
        if (v && v->isArray()) return *v->asArray();
        fail(std::string("\"") + key + "\" is missing or not a list");
        return kNone;
    }
    const Data& data(const char* key) {
        static const Data kNone;
        const Value* v = d_.find(key);
        if (v && v->isData()) return *v->asData();
        fail(std::string("\"") + key + "\" is missing or not data");
        return kNone;
    }
    std::int64_t element(const Value& v, const char* what) {
        if (v.isInteger()) return *v.asInteger();
        fail(std::string(what) + " holds something other than a whole number");
        return 0;
    }
    void fail(const std::string& why) {
        if (problem.empty()) problem = why;
    }

    std::string problem;

private:
    const Dictionary& d_;
};
}  // namespace

std::string rulesFingerprint(const Value& rules) {
    // FNV-1a over the rules as the property-list text they would be written as.
    std::uint64_t hash = 14695981039346656037ull;
    writeXmlPropertyList(rules, [&hash](std::string_view piece) {
        for (const char c : piece) {
            hash ^= static_cast<unsigned char>(c);
            hash *= 1099511628211ull;
        }
    });
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

namespace {
// A packed cell: piece (4 bytes), colour, shape, selection (1 each), then red, green and blue
// (4 each, a float's bits), least significant byte first; its place on the board is its column
// and row.
constexpr std::size_t kPackedCellBytes = 19;

void putWord(std::vector<std::uint8_t>& out, std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<std::uint8_t>(word >> shift));
}

std::uint32_t wordAt(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    std::uint32_t word = 0;
    for (int i = 3; i >= 0; --i) word = (word << 8) | bytes[at + static_cast<std::size_t>(i)];
    return word;
}

Value boardValue(const std::vector<BoardPiece>& board, BoardForm form) {
    if (form == BoardForm::Packed) {
        Data packed;
        packed.bytes.reserve(board.size() * kPackedCellBytes);
        for (const BoardPiece& p : board) {
            putWord(packed.bytes, p.pieceID);
            packed.bytes.insert(packed.bytes.end(), {p.colorIndex, p.shapeIndex, p.selected});
            for (const float shade : {p.red, p.green, p.blue}) putWord(packed.bytes, std::bit_cast<std::uint32_t>(shade));
        }
        return Value::data(std::move(packed));
    }
    Array cells;
    for (const BoardPiece& p : board)
        cells.push_back(Value::array({number(p.pieceID), number(p.colorIndex), number(p.shapeIndex),
                                      number(p.selected), number(p.x), number(p.y), bits(p.red),
                                      bits(p.green), bits(p.blue)}));
    return Value::array(std::move(cells));
}
}  // namespace

void addSnapshotEntries(Dictionary& d, const GameInfo& game, const GameSnapshot& s, BoardForm form) {
    d.set("Board", boardValue(s.board, form));
    d.set("Score", number(static_cast<std::int64_t>(s.score)));
    d.set("ScoreMultiplier", number(static_cast<std::int64_t>(s.scoreMultiplier)));
    Array variables;
    for (const std::uint64_t v : s.variables) variables.push_back(number(static_cast<std::int64_t>(v)));
    d.set("Variables", Value::array(std::move(variables)));
    Array pending;
    for (const PendingEvent& p : s.pending) {
        Dictionary entry;
        entry.set("EventID", number(p.eventID));
        entry.set("EventType", number(p.eventType));
        if (const std::optional<Source> source = sourceOf(game, p)) entry.set(source->key, number(source->index));
        pending.push_back(Value::dictionary(std::move(entry)));
    }
    d.set("PendingEvents", Value::array(std::move(pending)));
    Array words;
    for (const std::int32_t w : s.random.words) words.push_back(number(w));
    d.set("RandomWords", Value::array(std::move(words)));
    d.set("RandomFront", number(s.random.front));
    d.set("RandomRear", number(s.random.rear));
    d.set("DownCell", number(s.downCell));
    d.set("UpCell", number(s.upCell));
    d.set("GameStarted", number(s.gameStarted));
    d.set("GamePaused", number(s.gamePaused));
}

Value savedGameValue(const GameInfo& game, const SavedPlay& play, const std::string& fingerprint) {
    Dictionary d;
    d.set("Format", number(kFormat));
    d.set("GameName", Value::string(game.gameName));
    d.set("RulesFingerprint", Value::string(fingerprint));
    d.set("BoardNumber", number(play.boardNumber));
    d.set("BoardWidth", number(game.boardWidth));
    d.set("BoardHeight", number(game.boardHeight));
    addSnapshotEntries(d, game, play.snapshot, BoardForm::Cells);
    if (play.history) d.set(kHistoryKey, historyValue(game, *play.history));
    return Value::dictionary(std::move(d));
}

std::string savedGameTitle(const Value& saved) {
    const Dictionary* d = saved.asDictionary();
    const Value* name = d ? d->find("GameName") : nullptr;
    return name && name->isString() ? *name->asString() : std::string();
}

std::uint32_t savedGameBoardNumber(const Value& saved) {
    const Dictionary* d = saved.asDictionary();
    const Value* number = d ? d->find("BoardNumber") : nullptr;
    return number && number->isInteger() && isBoardNumber(*number->asInteger())
               ? static_cast<std::uint32_t>(*number->asInteger())
               : 0;
}

namespace {

// The colour of a piece: 0 for an empty set-up cell, else one of the game's colours; its shape
// likewise (a game whose colours are its shapes copies one into the other).
struct PieceLimits {
    std::int64_t pieceID, color, shape;
};

PieceLimits pieceLimits(const GameInfo& game) {
    const std::int64_t cells = static_cast<std::int64_t>(game.boardWidth) * game.boardHeight;
    // A refill numbers pieces below (width + 1) x height.
    return {cells + game.boardHeight - 1, game.numColors,
            game.colorsMatchShapes ? std::max(game.numShapes, game.numColors) : game.numShapes};
}

// The rules event a removal queues (the first of its type, as the queue looks it up).
const SupportedEvent* removalEvent(const GameInfo& game) {
    for (const SupportedEvent* e = game.events.get(); e; e = e->next.get())
        if (e->eventType == kEventPiecesRemoved) return e;
    return nullptr;
}

// The score and its multiplier are unsigned and wrap round, so they pass below zero (read back as
// negative numbers) only in a game whose rules subtract: a negative amount added to either, or a
// negative starting multiplier.
bool rulesCanSubtract(const GameInfo& game) {
    if (static_cast<std::int64_t>(game.scoreMultiplier) < 0) return true;
    const auto subtracts = [](const GameAction* a) {
        for (; a; a = a->next.get())
            if ((a->actionType == kActionAddScore || a->actionType == kActionAddMultiplier) && a->amount < 0)
                return true;
        return false;
    };
    for (const SupportedEvent* e = game.events.get(); e; e = e->next.get())
        if (subtracts(e->actions.get())) return true;
    for (const SupportedUserEvent* u = game.userEvents.get(); u; u = u->next.get())
        if (subtracts(u->triggerAction.get())) return true;
    return false;
}

bool isShownColor(float c) { return std::isfinite(c) && c >= 0.0f && c <= 1.0f; }

// The numbers of one cell as a saved game holds them.
struct CellNumbers {
    std::int64_t id, color, shape, selected, x, y;
    std::int64_t rgb[3];
};

// Appends the piece of a cell's numbers, or notes why no board of the game holds them.
void addCell(Reader& read, const GameInfo& game, const PieceLimits& limits, const CellNumbers& c, GameSnapshot& s) {
    // Every cell knows its own place; the board's walks rely on it.
    const std::size_t place = s.board.size();
    if (c.x != static_cast<std::int64_t>(place / game.boardHeight) ||
        c.y != static_cast<std::int64_t>(place % game.boardHeight))
        return read.fail("a cell of its board is out of place");
    const std::string where = "the cell at " + std::to_string(c.x) + "," + std::to_string(c.y) + " ";
    if (c.id < 0 || c.id > limits.pieceID)
        return read.fail(where + "holds piece " + std::to_string(c.id) + ", which no board of the game numbers");
    if (c.color < 0 || c.color > limits.color)
        return read.fail(where + "has colour " + std::to_string(c.color) + ", not one of the game's " +
                         std::to_string(limits.color));
    if (c.shape < 0 || c.shape > limits.shape)
        return read.fail(where + "has shape " + std::to_string(c.shape) + ", not one of the game's " +
                         std::to_string(limits.shape));
    if (c.selected != 0 && c.selected != 1)
        return read.fail(where + "is selected " + std::to_string(c.selected) + ", not 0 or 1");
    BoardPiece p;
    p.pieceID = static_cast<std::uint32_t>(c.id);
    p.colorIndex = static_cast<std::uint8_t>(c.color);
    p.shapeIndex = static_cast<std::uint8_t>(c.shape);
    p.selected = static_cast<std::uint8_t>(c.selected);
    p.x = static_cast<std::uint32_t>(c.x);
    p.y = static_cast<std::uint32_t>(c.y);
    float* shade[] = {&p.red, &p.green, &p.blue};
    for (std::size_t i = 0; i < 3; ++i) {
        if (c.rgb[i] < 0 || c.rgb[i] > std::numeric_limits<std::uint32_t>::max())
            return read.fail(where + "has a colour that is not 32 bits");
        *shade[i] = std::bit_cast<float>(static_cast<std::uint32_t>(c.rgb[i]));
        if (!isShownColor(*shade[i])) return read.fail(where + "has a shade outside 0 to 1");
    }
    s.board.push_back(p);
}

void readCells(Reader& read, const GameInfo& game, GameSnapshot& s) {
    const std::size_t cells = static_cast<std::size_t>(game.boardWidth) * game.boardHeight;
    const Array& board = read.array("Board");
    if (read.integer("BoardWidth") != game.boardWidth || read.integer("BoardHeight") != game.boardHeight ||
        board.size() != cells)
        return read.fail("its board is not of the game's size");
    const PieceLimits limits = pieceLimits(game);
    s.board.reserve(cells);
    for (const Value& cell : board) {
        const Array* n = cell.asArray();
        if (!n || n->size() != kCellNumbers) return read.fail("a cell of its board does not hold 9 numbers");
        auto at = [&](std::size_t i) { return read.element((*n)[i], "a cell"); };
        addCell(read, game, limits, {at(0), at(1), at(2), at(3), at(4), at(5), {at(6), at(7), at(8)}}, s);
        if (!read.problem.empty()) return;
    }
}

void readPackedCells(Reader& read, const GameInfo& game, GameSnapshot& s) {
    const std::size_t cells = static_cast<std::size_t>(game.boardWidth) * game.boardHeight;
    const std::vector<std::uint8_t>& bytes = read.data("Board").bytes;
    if (bytes.size() != cells * kPackedCellBytes) return read.fail("a board of it is not of the game's size");
    const PieceLimits limits = pieceLimits(game);
    s.board.reserve(cells);
    for (std::size_t place = 0, at = 0; place < cells; ++place, at += kPackedCellBytes) {
        const auto column = static_cast<std::int64_t>(place / game.boardHeight);
        const auto row = static_cast<std::int64_t>(place % game.boardHeight);
        addCell(read, game, limits,
                {wordAt(bytes, at), bytes[at + 4], bytes[at + 5], bytes[at + 6], column, row,
                 {wordAt(bytes, at + 7), wordAt(bytes, at + 11), wordAt(bytes, at + 15)}},
                s);
        if (!read.problem.empty()) return;
    }
}

void readVariables(Reader& read, const GameInfo& game, GameSnapshot& s) {
    const Array& values = read.array("Variables");
    std::size_t count = 0;
    for (const GameVariable* v = game.variables.get(); v; v = v->next.get()) ++count;
    if (values.size() != count) return read.fail("its score variables are not the game's");
    // A variable holds its starting value from the rules, or a count of the board's pieces.
    const std::uint64_t cells = static_cast<std::uint64_t>(game.boardWidth) * game.boardHeight;
    const GameVariable* v = game.variables.get();
    for (const Value& value : values) {
        const std::uint64_t n = static_cast<std::uint64_t>(read.element(value, "\"Variables\""));
        if (n != v->variableValue && n > cells)
            return read.fail("score variable " + std::to_string(v->variableID) + " is " +
                             std::to_string(static_cast<std::int64_t>(n)) + ", more than the board's " +
                             std::to_string(cells) + " cells");
        s.variables.push_back(n);
        v = v->next.get();
    }
}

void readPending(Reader& read, const GameInfo& game, GameSnapshot& s) {
    const Array& pending = read.array("PendingEvents");
    if (pending.size() > kMaxPendingEvents)
        return read.fail("it has " + std::to_string(pending.size()) + " pending events, and a game has " +
                         std::to_string(kMaxPendingEvents) + " at most");
    for (const Value& v : pending) {
        const Dictionary* entry = v.asDictionary();
        if (!entry) return read.fail("a pending event is not a dictionary");
        const std::int64_t id = read.integerIn(*entry, "EventID");
        const std::int64_t type = read.integerIn(*entry, "EventType");
        const char* key = entry->find("RulesEvent") ? "RulesEvent" : "TriggerOf";
        PendingEvent p;
        if (entry->find(key)) p.actions = actionsAt(game, key, read.integerIn(*entry, key));
        if (!p.actions) return read.fail("a pending event runs none of the game's actions");
        // What the player's inputs queue: the game's pieces-removed event, or a user event's trigger.
        const SupportedEvent* removal = removalEvent(game);
        const bool trigger = std::string(key) == "TriggerOf";
        const bool real = trigger ? id == kUserTriggerEventID && type == kEventUserTrigger
                                  : removal && removal->actions == p.actions && id == removal->eventID &&
                                        type == removal->eventType;
        if (!real)
            return read.fail("pending event " + std::to_string(id) + " (type " + std::to_string(type) +
                             ") is not one the player's moves queue in this game");
        p.eventID = static_cast<std::uint32_t>(id);
        p.eventType = static_cast<std::uint32_t>(type);
        s.pending.push_back(std::move(p));
    }
}

GameSnapshot readSnapshot(Reader& read, const GameInfo& game, BoardForm form) {
    GameSnapshot s;
    if (form == BoardForm::Packed) readPackedCells(read, game, s);
    else readCells(read, game, s);
    const std::int64_t lowest = rulesCanSubtract(game) ? std::numeric_limits<std::int64_t>::min() : 0;
    s.score = static_cast<std::uint64_t>(read.within("Score", lowest, kLargest));
    s.scoreMultiplier = static_cast<std::uint64_t>(read.within("ScoreMultiplier", lowest, kLargest));
    readVariables(read, game, s);
    readPending(read, game, s);
    const Array& words = read.array("RandomWords");
    if (words.size() != s.random.words.size()) read.fail("its random sequence is not complete");
    for (std::size_t i = 0; i < words.size() && i < s.random.words.size(); ++i)
        s.random.words[i] = static_cast<std::int32_t>(read.element(words[i], "\"RandomWords\""));
    s.random.front = static_cast<int>(read.within("RandomFront", 0, RandomSequence::kWords - 1));
    s.random.rear = static_cast<int>(read.within("RandomRear", 0, RandomSequence::kWords - 1));
    if (RandomSequence probe; !probe.restore(s.random)) read.fail("its random sequence is not complete");
    const std::int64_t lastCell = static_cast<std::int64_t>(s.board.size()) - 1;
    s.downCell = read.within("DownCell", GameSnapshot::kNoCell, lastCell);
    s.upCell = read.within("UpCell", GameSnapshot::kNoCell, lastCell);
    s.gameStarted = static_cast<int>(read.within("GameStarted", 0, 1));
    s.gamePaused = static_cast<int>(read.within("GamePaused", 0, 1));
    return s;
}

}  // namespace

std::variant<GameSnapshot, std::string> snapshotFromEntries(const Dictionary& d, const GameInfo& game,
                                                            BoardForm form) {
    Reader read(d);
    GameSnapshot s = readSnapshot(read, game, form);
    if (!read.problem.empty()) return read.problem;
    return s;
}

std::variant<SavedPlay, std::string> readSavedGame(const Value& saved, const GameInfo& game,
                                                   const std::string& fingerprint) {
    const std::string cannot = "The saved game of \"" + game.gameName + "\" cannot be continued: ";
    const Dictionary* d = saved.asDictionary();
    if (!d) return cannot + "it is not a dictionary.";
    const Value* print = d->find("RulesFingerprint");
    if (!print || !print->isString() || *print->asString() != fingerprint)
        return cannot + "the game's rules have changed since it was saved.";
    Reader read(*d);
    if (read.integer("Format") != kFormat) read.fail("it was saved in another format");
    SavedPlay play;
    // Games saved before boards had numbers have none: 0.
    if (d->find("BoardNumber"))
        play.boardNumber = static_cast<std::uint32_t>(read.within("BoardNumber", 0, kLastBoardNumber));
    play.snapshot = readSnapshot(read, game, BoardForm::Cells);
    if (!read.problem.empty()) return cannot + read.problem + ".";
    // A history that cannot be read costs the undo, never the game.
    if (const Value* history = d->find(kHistoryKey)) {
        std::variant<SavedMoves, std::string> moves = historyFrom(*history, game);
        if (std::string* why = std::get_if<std::string>(&moves))
            play.historyProblem = "its undo history cannot be read (" + *why + "); it goes on without it";
        else
            play.moves = std::move(std::get<SavedMoves>(moves));
    }
    return play;
}

}  // namespace tolvar
