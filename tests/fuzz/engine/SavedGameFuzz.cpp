// Any bytes as "SavedGame.dict": continuing never crashes or hangs; a game that is continued
// plays on (ticks, a hinted click, undo and redo) and saves again into a file that continues.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <variant>

#include "engine/Engine.h"
#include "engine/StandInShell.h"
#include "core/PlistFile.h"
#include "rules/BuiltinGames.h"

namespace {

using namespace tolvar;

const Value* rulesFor(const std::string& title) {
    static const Value games[] = {createTestGameOne(), createTestGameTwo(), createTestGameThree()};
    for (const Value& g : games)
        if (const Value* name = g.asDictionary()->find("GameName"); name && *name->asString() == title)
            return &g;
    return nullptr;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto read = parsePropertyList(std::string(reinterpret_cast<const char*>(data), size));
    if (std::holds_alternative<PlistError>(read)) return 0;
    const Value& saved = std::get<Value>(read);
    StandInHost host;
    StandInView view(host);
    Engine engine(view, host);
    ActionsMenu menu;
    const Value* rules = rulesFor(Engine::savedGameTitle(saved));
    if (!engine.continueGame(saved, rules, menu).empty()) {
        if (engine.game()) std::abort();  // a refused game starts nothing
        return 0;
    }
    for (int i = 0; i < 3; ++i) engine.processEvents();
    if (const std::vector<BoardCell> move = engine.hint().cells; !move.empty()) {
        CurrentEvent click;
        click.x = 512, click.y = 384;
        for (const std::int64_t type : {kEventTypeMouseDown, kEventTypeMouseUp}) {
            click.type = type;
            engine.takeInput(click);
        }
        engine.processEvents();
        if (engine.undo() && !engine.redo()) std::abort();
    }
    if (const std::optional<Value> again = engine.savedGame()) {
        Engine other(view, host);
        const Value text = std::get<Value>(parsePropertyList(toXmlPropertyList(*again)));
        if (!other.continueGame(text, rules, menu).empty()) std::abort();
    }
    return 0;
}
