// Any bytes as "BestScores.dict": the best-score check never crashes or hangs, never loses
// the player's file (an unreadable one is kept aside byte for byte), and always leaves a
// table that reads back.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <variant>

#include "engine/Completion.h"
#include "engine/EngineContext.h"
#include "engine/StandInShell.h"
#include "core/BestScoresFile.h"
#include "core/PlistFile.h"

namespace {

using namespace tolvar;

// The score screen must get a list whenever it highlights a row.
class CheckingView : public StandInView {
public:
    using StandInView::StandInView;
    void displayScores(const Value& scores, int highlight) override {
        if (highlight >= 0 && !scores.asArray()) std::abort();
    }
};

std::string slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

const std::string& folder() {
    static const std::string path = [] {
        auto p = std::filesystem::temp_directory_path() /
                 ("tolvar-fuzz-best-scores-" + std::to_string(getpid()));
        std::filesystem::create_directories(p);
        return p.string();
    }();
    return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file = folder() + "/BestScores.dict";
    const std::string aside = file + ".unreadable";  // the first name a broken file is kept under
    for (const auto& entry : std::filesystem::directory_iterator(folder()))
        if (entry.path().filename() != "BestScores.dict") std::filesystem::remove(entry.path());
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    {
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    // The first bytes choose the game's name, score and order, so every path is reached.
    BestScoresFile scores(folder());
    StandInHost host(scores);
    CheckingView view(host);
    EngineContext ctx(view, host);
    ctx.gameInfo = std::make_unique<GameInfo>();
    ctx.gameInfo->gameName = size > 0 && (data[0] & 1) ? "Glimmet" : "Vexamor";
    ctx.gameInfo->score = size > 1 ? static_cast<std::uint64_t>(data[1]) * 7 : 30;
    GameAction action;
    action.lowerIsBetter = size > 2 ? (data[2] & 1) : 1;
    BestScores(ctx).performActionCheckBestScores(action);

    const bool keptAside = std::filesystem::exists(aside);
    if (keptAside && slurp(aside) != bytes) std::abort();  // the player's bytes are kept
    if (!keptAside && std::holds_alternative<PlistError>(parsePropertyList(bytes))) {
        // An unreadable table is never written over without being kept aside.
        if (slurp(file) != bytes) std::abort();
    }
    if (keptAside && std::holds_alternative<PlistError>(readPropertyListFile(file))) std::abort();
    return 0;
}
