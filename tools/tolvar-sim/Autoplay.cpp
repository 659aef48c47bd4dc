#include "Autoplay.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "engine/Board.h"
#include "engine/BoardLayout.h"
#include "engine/Engine.h"
#include "engine/EventQueue.h"
#include "engine/QuietShell.h"
#include "engine/RandomSequence.h"
#include "core/MemoryScoreStore.h"

namespace tolvar::sim {

namespace {

// What the score entry and the alert become while a move is tried: a type that does nothing.
constexpr std::uint32_t kMutedActionType = 3;
static_assert(isInertActionType(kMutedActionType));

// The bots' standard output, which goes nowhere, is written in blocks of this many bytes.
constexpr std::size_t kThrownAwayBuffer = 1 << 16;

// A move as the player makes it: a click (and the remove key, when the game has one) or a drag.
struct Move {
    int x1 = 0, y1 = 0, x2 = 0, y2 = 0;  // cells; a click has x2, y2 = x1, y1
    std::int8_t removeKey = 0;
};

// What the board, the score and the variables were, to put back after a tried move.
struct Snapshot {
    std::vector<BoardPiece> board;
    std::uint64_t score = 0;
    std::uint64_t multiplier = 0;
    std::vector<std::uint64_t> variables;
};

// The bots' desktop: best scores go to the store given (a job's own, in memory), so a game's end
// waits on no file.
class BotHost : public QuietHost {
public:
    explicit BotHost(ScoreStore& scores) : scores_(scores) {}
    ScoreStore& scoreStore() override { return scores_; }

private:
    ScoreStore& scores_;
};

class Bot {
public:
    Bot(Engine& engine, Player player) : engine_(engine), player_(player) {
        for (const SupportedEvent* e = gameInfo->events.get(); e; e = e->next.get())
            for (const GameAction* a = e->actions.get(); a; a = a->next.get())
                if (a->actionType == kActionCheckBestScores && a->lowerIsBetter != 0) lowerIsBetter_ = true;
        // As the engine finds them: the first click or drag user event takes the mouse, the first
        // user event with a key takes that key.
        for (const SupportedUserEvent* u = gameInfo->userEvents.get(); u; u = u->next.get())
            if (!mouse_ && (u->userEventType == kUserEventSwapAdjacent || u->userEventType == kUserEventSelectColorRegion))
                mouse_ = u;
        for (const SupportedUserEvent* u = gameInfo->userEvents.get(); u; u = u->next.get()) {
            if (u->userEventType != kUserEventRemoveSelection || u->userEventCharacter == 0) continue;
            const SupportedUserEvent* first = gameInfo->userEvents.get();
            while (first->userEventCharacter != u->userEventCharacter) first = first->next.get();
            if (first == u) removeKey_ = u->userEventCharacter;
            break;
        }
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
            make(best[static_cast<std::size_t>(gameRandom().next()) % best.size()]);
            return true;
        }
        // A random order, and the first move the game takes: each such move is as likely.
        for (std::size_t i = moves.size(); i > 1; --i)
            std::swap(moves[i - 1], moves[static_cast<std::size_t>(gameRandom().next()) % i]);
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
        GameInfo& game = *gameInfo;
        Board board(game);
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
        const BoardLayout layout = computeBoardLayout(*gameInfo);
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

    Snapshot keep() const {
        Snapshot s{gameInfo->board, gameInfo->score, gameInfo->scoreMultiplier, {}};
        for (const GameVariable* v = gameInfo->variables.get(); v; v = v->next.get()) s.variables.push_back(v->variableValue);
        return s;
    }

    void restore(const Snapshot& s) {
        // In place: the engine keeps pointers to the cells of the last gesture.
        std::copy(s.board.begin(), s.board.end(), gameInfo->board.begin());
        gameInfo->score = s.score;
        gameInfo->scoreMultiplier = s.multiplier;
        std::size_t i = 0;
        for (GameVariable* v = gameInfo->variables.get(); v; v = v->next.get()) v->variableValue = s.variables[i++];
    }

    // The score the game would end with right after a move (its end counted at once: the
    // no-move-left event runs, without entering the score or showing an alert), or nothing when the
    // game does not take the move. Everything is put back afterwards.
    std::optional<std::int64_t> tryMove(const Move& m) {
        const Snapshot before = keep();
        std::vector<SupportedEvent*> ends;
        for (SupportedEvent* e = gameInfo->events.get(); e; e = e->next.get())
            if (e->eventType == kEventNoMovesLeft) ends.push_back(e), e->eventType = 0;
        make(m);
        bool changed = gameInfo->score != before.score;
        for (std::size_t i = 0; i < before.board.size() && !changed; ++i) {
            const BoardPiece& now = gameInfo->board[i];
            changed = now.pieceID != before.board[i].pieceID || now.colorIndex != before.board[i].colorIndex;
        }
        if (changed && !ends.empty() && player_ == Player::Greedy) {
            std::vector<std::pair<GameAction*, std::uint32_t>> muted;
            for (GameAction* a = ends.front()->actions.get(); a; a = a->next.get())
                if (a->actionType == kActionCheckBestScores || a->actionType == kActionShowMessage)
                    muted.emplace_back(a, a->actionType), a->actionType = kMutedActionType;
            EventQueue(*gameInfo).addEventToQueue(ends.front()->copyForQueue());
            engine_.processEvents();
            for (auto& [action, type] : muted) action->actionType = type;
        }
        for (SupportedEvent* e : ends) e->eventType = kEventNoMovesLeft;
        gameInfo->eventQueue.reset();
        const auto score = static_cast<std::int64_t>(gameInfo->score);
        restore(before);
        return changed ? std::optional<std::int64_t>(score) : std::nullopt;
    }

    Engine& engine_;
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
    BotHost host(scores);
    QuietView view;
    Engine engine(view, host);
    ActionsMenu menu;
    gameRandom().seed(static_cast<std::uint32_t>(options.seed + index));
    engine.startGame(library.currentRules(), menu);
    GameResult result;
    result.index = index;
    if (!gameInfo) return result;
    engine.processEvents();
    Bot bot(engine, options.player);
    while (!engine.gamePaused() && result.moves < options.maxMoves && bot.play()) ++result.moves;
    result.ended = engine.gamePaused() != 0;
    result.score = static_cast<std::int64_t>(gameInfo->score);
    result.cleared = Board(*gameInfo).countPieces() == 0;
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
    char pattern[] = "/tmp/tolvar-autoplay-XXXXXX";
    if (!mkdtemp(pattern)) {
        std::perror("tolvar-sim: a folder for the bots");
        return 2;
    }
    const std::string folder = pattern;
    const auto start = std::chrono::steady_clock::now();
    std::fflush(stdout);
    std::vector<pid_t> children;
    for (unsigned job = 0; job < options.jobs; ++job) {
        const pid_t pid = fork();
        if (pid < 0) {
            std::perror("tolvar-sim: fork");
            break;
        }
        if (pid > 0) {
            children.push_back(pid);
            continue;
        }
        // The engine's diagnostic lines would drown the table: thrown away a full buffer at a time,
        // not one system call a line.
        if (std::freopen("/dev/null", "w", stdout)) std::setvbuf(stdout, nullptr, _IOFBF, kThrownAwayBuffer);
        // The job's results go to the parent through a file written once, at the job's end.
        std::ofstream out(folder + "/" + std::to_string(job) + ".results");
        MemoryScoreStore scores;
        for (unsigned long i = job; i < options.games; i += options.jobs) {
            const GameResult r = playOneGame(library, options, i, scores);
            out << r.index << ' ' << r.score << ' ' << r.moves << ' ' << r.ended << ' ' << r.cleared << '\n';
        }
        out.close();
        std::_Exit(out ? 0 : 1);
    }
    bool failed = children.size() != options.jobs;
    for (pid_t pid : children) {
        int status = 0;
        failed = waitpid(pid, &status, 0) != pid || !WIFEXITED(status) || WEXITSTATUS(status) != 0 || failed;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::vector<GameResult> results;
    for (unsigned job = 0; job < options.jobs; ++job) {
        std::ifstream in(folder + "/" + std::to_string(job) + ".results");
        GameResult r;
        while (in >> r.index >> r.score >> r.moves >> r.ended >> r.cleared) results.push_back(r);
    }
    std::error_code ec;
    std::filesystem::remove_all(folder, ec);
    if (failed || results.size() != options.games) {
        std::fprintf(stderr, "tolvar-sim: a bot's process failed; %zu of %lu games were played\n", results.size(),
                     options.games);
        return 2;
    }
    std::sort(results.begin(), results.end(), [](const GameResult& a, const GameResult& b) { return a.index < b.index; });
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
