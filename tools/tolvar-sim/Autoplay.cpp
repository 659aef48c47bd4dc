#include "Autoplay.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <new>
#include <thread>

#include "engine/Board.h"
#include "engine/BoardLayout.h"
#include "engine/Engine.h"
#include "engine/EventQueue.h"
#include "engine/StandInShell.h"
#include "engine/UserInput.h"
#include "core/MemoryScoreStore.h"

namespace tolvar::sim {

namespace {

// What the score entry and the alert become while a move is tried: a type that does nothing.
constexpr std::uint32_t kMutedActionType = 3;
static_assert(isInertActionType(kMutedActionType));

// A move as the player makes it: a click (and the remove key, when the game has one) or a drag.
struct Move {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // cells; a click has x2, y2 = x1, y1
    std::int8_t removeKey = 0;
};

class Bot {
public:
    Bot(Engine& engine, Player player) : engine_(engine), game_(*engine.game()), player_(player) {
        for (const SupportedEvent* e = game_.events.get(); e; e = e->next.get())
            for (const GameAction* a = e->actions.get(); a; a = a->next.get())
                if (a->actionType == kActionCheckBestScores && a->lowerIsBetter != 0) lowerIsBetter_ = true;
        // As the engine finds them: the first click or drag user event takes the mouse, the first
        // user event with a key takes that key.
        for (const SupportedUserEvent* u = game_.userEvents.get(); u; u = u->next.get())
            if (!mouse_ && (u->userEventType == kUserEventSwapAdjacent || u->userEventType == kUserEventSelectColorRegion))
                mouse_ = u;
        removeKey_ = removeSelectionKey(game_);
    }

    // Makes one move; false when the game takes none.
    bool play() {
        std::vector<Move> moves = candidates();
        if (player_ == Player::Greedy) {
            std::vector<Move> best;
            std::int64_t bestScore = 0;
            for (const Move& m : moves) {
                const auto score = tryMove(m);
                if (!score) continue;
                if (!best.empty() && *score != bestScore && (lowerIsBetter_ ? *score > bestScore : *score < bestScore))
                    continue;
                if (best.empty() || *score != bestScore) best.clear();
                bestScore = *score;
                best.push_back(m);
            }
            if (best.empty()) return false;
            // Among equals the choice is random, so a bot cannot go back and forth for ever.
            make(best[static_cast<std::size_t>(engine_.random().next()) % best.size()]);
            return true;
        }
        // A random order, and the first move the game takes: each such move is as likely.
        for (std::size_t i = moves.size(); i > 1; --i)
            std::swap(moves[i - 1], moves[static_cast<std::size_t>(engine_.random().next()) % i]);
        const bool mayRefuse = mouse_ && mouse_->userEventType == kUserEventSwapAdjacent;
        for (const Move& m : moves) {
            if (mayRefuse && !tryMove(m)) continue;
            make(m);
            return true;
        }
        return false;
    }

private:
    std::vector<Move> candidates() const {
        std::vector<Move> out;
        if (!mouse_) return out;
        Board board(game_, engine_.output());
        const int w = board.width(), h = board.height();
        if (mouse_->userEventType == kUserEventSwapAdjacent) {
            for (int x = 0; x < w; ++x)
                for (int y = 0; y < h; ++y) {
                    if (board.getBoardPieceAtX(x, y).pieceID == 0) continue;
                    if (x + 1 < w && board.getBoardPieceAtX(x + 1, y).pieceID != 0) out.push_back({x, y, x + 1, y, 0});
                    if (y + 1 < h && board.getBoardPieceAtX(x, y + 1).pieceID != 0) out.push_back({x, y, x, y + 1, 0});
                }
            return out;
        }
        // One click per region of one colour big enough to be selected.
        Flags seen = board.makeFlags();
        for (int x = 0; x < w; ++x)
            for (int y = 0; y < h; ++y) {
                const BoardPiece& piece = board.getBoardPieceAtX(x, y);
                if (piece.pieceID == 0 || seen.test(piece.pieceID)) continue;
                if (board.getRegionColorCountForPiece(piece, seen) >= mouse_->minimumPieces)
                    out.push_back({x, y, x, y, removeKey_});
            }
        return out;
    }

    void send(std::int64_t type, int column, int row, std::int8_t key = 0) {
        const BoardLayout layout = computeBoardLayout(game_);
        CurrentEvent event;
        event.type = type;
        event.x = layout.left + (static_cast<float>(column) + 0.5f) * layout.w;
        event.y = layout.m + (static_cast<float>(row) + 0.5f) * layout.h;
        if (key != 0) {
            event.keyCode = static_cast<std::uint16_t>(100 + static_cast<unsigned char>(key));
            event.characters = std::string(1, static_cast<char>(key));
        }
        engine_.takeInput(event);
    }

    void make(const Move& m) {
        send(kEventTypeMouseDown, m.x1, m.y1);
        send(kEventTypeMouseUp, m.x2, m.y2);
        if (m.removeKey != 0) {
            send(kEventTypeKeyDown, 0, 0, m.removeKey);
            send(kEventTypeKeyUp, 0, 0, m.removeKey);
        }
        engine_.processEvents();
    }

    // The score the game would end with right after a move (its end counted at once: the
    // no-move-left event runs, without entering the score or showing an alert), or nothing when the
    // game does not take the move. The game is put back afterwards, all but its random sequence,
    // which goes on from the numbers the tried move drew.
    std::optional<std::int64_t> tryMove(const Move& m) {
        const GameSnapshot before = engine_.snapshot();
        std::vector<SupportedEvent*> ends;
        for (SupportedEvent* e = game_.events.get(); e; e = e->next.get())
            if (e->eventType == kEventNoMovesLeft) ends.push_back(e), e->eventType = 0;
        make(m);
        bool changed = game_.score != before.score;
        for (std::size_t i = 0; i < before.board.size() && !changed; ++i) {
            const BoardPiece& now = game_.board[i];
            changed = now.pieceID != before.board[i].pieceID || now.colorIndex != before.board[i].colorIndex;
        }
        if (changed && !ends.empty() && player_ == Player::Greedy) {
            std::vector<std::pair<GameAction*, std::uint32_t>> muted;
            for (GameAction* a = ends.front()->actions.get(); a; a = a->next.get())
                if (a->actionType == kActionCheckBestScores || a->actionType == kActionShowMessage)
                    muted.emplace_back(a, a->actionType), a->actionType = kMutedActionType;
            EventQueue(game_).addEventToQueue(ends.front()->copyForQueue());
            engine_.processEvents();
            for (auto& [action, type] : muted) action->actionType = type;
        }
        for (SupportedEvent* e : ends) e->eventType = kEventNoMovesLeft;
        const auto score = static_cast<std::int64_t>(game_.score);
        const RandomSequence::State drawn = engine_.random().state();
        engine_.restore(before);
        engine_.random().restore(drawn);
        return changed ? std::optional<std::int64_t>(score) : std::nullopt;
    }

    Engine& engine_;
    GameInfo& game_;
    Player player_;
    bool lowerIsBetter_ = false;
    const SupportedUserEvent* mouse_ = nullptr;
    std::int8_t removeKey_ = 0;
};

double quantile(std::vector<double> v, double q) {
    std::sort(v.begin(), v.end());
    const double at = q * static_cast<double>(v.size() - 1);
    const auto lo = static_cast<std::size_t>(at);
    const std::size_t hi = std::min(lo + 1, v.size() - 1);
    return v[lo] + (v[hi] - v[lo]) * (at - static_cast<double>(lo));
}

std::string spread(const char* label, const std::vector<double>& v) {
    double sum = 0;
    for (double x : v) sum += x;
    char line[256];
    std::snprintf(line, sizeof line, "%-7s min %g  q1 %g  median %g  q3 %g  max %g  mean %.2f\n", label,
                  quantile(v, 0), quantile(v, 0.25), quantile(v, 0.5), quantile(v, 0.75), quantile(v, 1),
                  sum / static_cast<double>(v.size()));
    return line;
}

}  // namespace

GameResult playOneGame(const GameLibrary& library, const AutoplayOptions& options, unsigned long index,
                       ScoreStore& scores) {
    // Best scores go to the job's own store, in memory, so a game's end waits on no file.
    StandInHost host(scores);
    StandInView view(host);
    Engine engine(view, host, GameOutput::discarded());
    ActionsMenu menu;
    engine.seedBoardPicks(static_cast<std::uint32_t>(options.seed + index));
    engine.startGame(library.currentRules(), menu);
    GameResult result;
    result.index = index;
    const GameInfo* gameInfo = engine.game();
    if (!gameInfo) return result;
    engine.processEvents();
    Bot bot(engine, options.player);
    while (!engine.gamePaused() && result.moves < options.maxMoves && bot.play()) ++result.moves;
    result.ended = engine.gamePaused() != 0;
    result.score = static_cast<std::int64_t>(gameInfo->score);
    result.cleared = Board(*engine.game(), engine.output()).countPieces() == 0;
    engine.startGame(nullptr, menu);
    return result;
}

std::string autoplayTable(const AutoplayOptions& options, const std::vector<GameResult>& results, double seconds) {
    std::vector<double> scores, moves;
    std::size_t ended = 0, cleared = 0;
    for (const GameResult& r : results) {
        scores.push_back(static_cast<double>(r.score));
        moves.push_back(static_cast<double>(r.moves));
        ended += r.ended;
        cleared += r.cleared;
    }
    char line[512];
    std::snprintf(line, sizeof line, "autoplay: %zu games of \"%s\", %s player, seeds %lu to %lu\n", results.size(),
                  options.title.c_str(), options.player == Player::Greedy ? "greedy" : "random", options.seed,
                  options.seed + (options.games ? options.games - 1 : 0));
    std::string out = line;
    if (results.empty()) return out;
    out += spread("score", scores) + spread("moves", moves);
    const double n = static_cast<double>(results.size());
    std::snprintf(line, sizeof line, "ended by itself %.1f %%\nboards cleared %.1f %%\n",
                  100.0 * static_cast<double>(ended) / n, 100.0 * static_cast<double>(cleared) / n);
    out += line;
    std::snprintf(line, sizeof line, "games per second %.1f (%u job%s)\n", seconds > 0 ? n / seconds : 0.0,
                  options.jobs, options.jobs == 1 ? "" : "s");
    return out + line;
}

int runAutoplay(const GameLibrary& library, const AutoplayOptions& options) {
    // Each job is a thread with its own engines and best scores; job j plays games j, j + J, ...
    // into their own places of the results.
    std::vector<GameResult> results(options.games);
    std::atomic<bool> failed{false};
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> jobs;
    for (unsigned job = 0; job < options.jobs; ++job)
        jobs.emplace_back([&, job] {
            try {
                MemoryScoreStore scores;
                for (unsigned long i = job; i < options.games; i += options.jobs)
                    results[i] = playOneGame(library, options, i, scores);
            } catch (const std::bad_alloc&) {
                failed = true;
            }
        });
    for (std::thread& job : jobs) job.join();
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (failed) {
        std::fprintf(stderr, "tolvar-sim: a bot ran out of memory; the games were not all played\n");
        return 2;
    }
    std::fputs(autoplayTable(options, results, seconds).c_str(), stdout);
    if (!options.csvFile.empty()) {
        std::ofstream csv(options.csvFile);
        csv << "game,seed,score,moves,ended,cleared\n";
        for (const GameResult& r : results)
            csv << r.index << ',' << options.seed + r.index << ',' << r.score << ',' << r.moves << ',' << r.ended << ','
                << r.cleared << '\n';
        if (!csv) {
            std::fprintf(stderr, "tolvar-sim: cannot write %s\n", options.csvFile.c_str());
            return 2;
        }
    }
    return 0;
}

}  // namespace tolvar::sim
