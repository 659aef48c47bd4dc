#include "engine/SavedGame.h"

#include <bit>
#include <cstdio>

#include "platform/PlistFile.h"

namespace tolvar {

namespace {
constexpr std::int64_t kFormat = 1;
constexpr std::size_t kCellNumbers = 9;  // piece, colour, shape, selected, x, y, red, green, blue

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
    for (const char c : toXmlPropertyList(rules)) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 1099511628211ull;
    }
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(hash));
    return text;
}

Value savedGameValue(const GameInfo& game, const GameSnapshot& s, const std::string& fingerprint) {
    Dictionary d;
    d.set("Format", number(kFormat));
    d.set("GameName", Value::string(game.gameName));
    d.set("RulesFingerprint", Value::string(fingerprint));
    d.set("BoardWidth", number(game.boardWidth));
    d.set("BoardHeight", number(game.boardHeight));
    Array board;
    for (const BoardPiece& p : s.board)
        board.push_back(Value::array({number(p.pieceID), number(p.colorIndex), number(p.shapeIndex),
                                      number(p.selected), number(p.x), number(p.y), bits(p.red),
                                      bits(p.green), bits(p.blue)}));
    d.set("Board", Value::array(std::move(board)));
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
    return Value::dictionary(std::move(d));
}

std::string savedGameTitle(const Value& saved) {
    const Dictionary* d = saved.asDictionary();
    const Value* name = d ? d->find("GameName") : nullptr;
    return name && name->isString() ? *name->asString() : std::string();
}

std::variant<GameSnapshot, std::string> snapshotFromSavedGame(const Value& saved,
                                                              const GameInfo& game,
                                                              const std::string& fingerprint) {
    const std::string cannot = "The saved game of \"" + game.gameName + "\" cannot be continued: ";
    const Dictionary* d = saved.asDictionary();
    if (!d) return cannot + "it is not a dictionary.";
    const Value* print = d->find("RulesFingerprint");
    if (!print || !print->isString() || *print->asString() != fingerprint)
        return cannot + "the game's rules have changed since it was saved.";
    Reader read(*d);
    if (read.integer("Format") != kFormat) read.fail("it was saved in another format");
    GameSnapshot s;
    const std::size_t cells = static_cast<std::size_t>(game.boardWidth) * game.boardHeight;
    const Array& board = read.array("Board");
    if (read.integer("BoardWidth") != game.boardWidth || read.integer("BoardHeight") != game.boardHeight ||
        board.size() != cells)
        read.fail("its board is not of the game's size");
    for (const Value& cell : board) {
        const Array* n = cell.asArray();
        if (!n || n->size() != kCellNumbers) {
            read.fail("a cell of its board does not hold 9 numbers");
            break;
        }
        auto at = [&](std::size_t i) { return read.element((*n)[i], "a cell"); };
        BoardPiece p;
        p.pieceID = static_cast<std::uint32_t>(at(0));
        p.colorIndex = static_cast<std::uint8_t>(at(1));
        p.shapeIndex = static_cast<std::uint8_t>(at(2));
        p.selected = static_cast<std::uint8_t>(at(3));
        p.x = static_cast<std::uint32_t>(at(4));
        p.y = static_cast<std::uint32_t>(at(5));
        p.red = std::bit_cast<float>(static_cast<std::uint32_t>(at(6)));
        p.green = std::bit_cast<float>(static_cast<std::uint32_t>(at(7)));
        p.blue = std::bit_cast<float>(static_cast<std::uint32_t>(at(8)));
        // Every cell knows its own place; the board's walks rely on it.
        const std::size_t place = s.board.size();
        if (game.boardHeight == 0 || p.x != place / game.boardHeight || p.y != place % game.boardHeight)
            read.fail("a cell of its board is out of place");
        s.board.push_back(p);
    }
    s.score = static_cast<std::uint64_t>(read.integer("Score"));
    s.scoreMultiplier = static_cast<std::uint64_t>(read.integer("ScoreMultiplier"));
    for (const Value& v : read.array("Variables"))
        s.variables.push_back(static_cast<std::uint64_t>(read.element(v, "\"Variables\"")));
    std::size_t variableCount = 0;
    for (const GameVariable* v = game.variables.get(); v; v = v->next.get()) ++variableCount;
    if (s.variables.size() != variableCount) read.fail("its score variables are not the game's");
    for (const Value& v : read.array("PendingEvents")) {
        const Dictionary* entry = v.asDictionary();
        if (!entry) {
            read.fail("a pending event is not a dictionary");
            break;
        }
        PendingEvent p;
        p.eventID = static_cast<std::uint32_t>(read.integerIn(*entry, "EventID"));
        p.eventType = static_cast<std::uint32_t>(read.integerIn(*entry, "EventType"));
        const char* key = entry->find("RulesEvent") ? "RulesEvent" : "TriggerOf";
        if (entry->find(key)) p.actions = actionsAt(game, key, read.integerIn(*entry, key));
        if (!p.actions) read.fail("a pending event runs none of the game's actions");
        s.pending.push_back(std::move(p));
    }
    const Array& words = read.array("RandomWords");
    if (words.size() != s.random.words.size()) read.fail("its random sequence is not complete");
    for (std::size_t i = 0; i < words.size() && i < s.random.words.size(); ++i)
        s.random.words[i] = static_cast<std::int32_t>(read.element(words[i], "\"RandomWords\""));
    s.random.front = static_cast<int>(read.integer("RandomFront"));
    s.random.rear = static_cast<int>(read.integer("RandomRear"));
    if (RandomSequence probe; !probe.restore(s.random)) read.fail("its random sequence is not complete");
    s.downCell = read.integer("DownCell");
    s.upCell = read.integer("UpCell");
    s.gameStarted = static_cast<int>(read.integer("GameStarted"));
    s.gamePaused = static_cast<int>(read.integer("GamePaused"));
    if (!read.problem.empty()) return cannot + read.problem + ".";
    return s;
}

}  // namespace tolvar
