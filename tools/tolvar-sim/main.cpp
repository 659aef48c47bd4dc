// tolvar-sim [--seed N] [--rules FILE] [SCRIPT]
// tolvar-sim --autoplay N --game NAME [--player random|greedy] [--jobs J] [--csv FILE] [--seed N] [--rules FILE]
//
// Plays the game engine without windows, drawing or delays, driven by a script of player
// commands; a seed and a script always give the same transcript. With --autoplay, a bot plays N
// games of NAME to their end and the figures of how they went are printed.
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>
#include <string>
#include <variant>

#include "RegularFile.h"
#include "Autoplay.h"
#include "ScriptRunner.h"
#include "engine/RandomSequence.h"
#include "core/CommandLine.h"
#include "core/Translate.h"

namespace {

constexpr const char* kUsage = N_(
    "usage: tolvar-sim [--seed N] [--rules FILE] [SCRIPT]\n"
    "       tolvar-sim --autoplay N --game NAME [--player random|greedy] [--jobs J] [--csv FILE]\n"
    "                  [--seed N] [--rules FILE]\n");

constexpr const char* kOptions = N_(
    "Plays the game engine without windows from a script of commands (standard input when no SCRIPT\n"
    "is given) and prints the engine's diagnostic lines.\n\n"
    "options:\n"
    "  --seed N       where the numbers of the boards dealt come from (the time of day when not\n"
    "                 given); with --autoplay, game i plays with seed N + i (N is 1 when not given)\n"
    "  --rules FILE   the games of FILE instead of the data folder's \"RulesDict.dict\"\n"
    "  --autoplay N   a bot plays N games of the --game to their end; prints the scores (min,\n"
    "                 quartiles, max, mean), moves per game, the share of games that end by\n"
    "                 themselves and of boards cleared, and games per second\n"
    "  --game NAME    the title of the game the bot plays\n"
    "  --player P     random (any move the game takes, the default) or greedy (the move that scores\n"
    "                 best at once, in the game's own direction)\n"
    "  --jobs J       J threads play the games (1 by default); the figures do not depend on J\n"
    "  --csv FILE     also writes one line per game: game, seed, score, moves, ended, cleared\n"
    "  --help         this text\n"
    "  --version      the version\n\n"
    "script commands:\n");

int usage(const std::string& why) {
    std::fprintf(stderr, "tolvar-sim: %s\n%s", why.c_str(), tolvar::tr(kUsage));
    return 2;
}

bool parseNumber(const char* text, unsigned long& out) {
    char* end = nullptr;
    errno = 0;
    out = std::strtoul(text, &end, 10);
    return end != text && *end == '\0' && errno == 0 && text[0] != '-';
}

struct CommandLine {
    bool seeded = false;
    unsigned long seed = 0;
    std::string rulesFile, scriptFile;
    bool autoplay = false;
    tolvar::sim::AutoplayOptions bench;
};

// Reads the options into line; returns an empty text, or why the command line is wrong.
std::string parseCommandLine(int argc, char** argv, CommandLine& line) {
    unsigned long jobs = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        auto value = [&]() -> const char* { return ++i < argc ? argv[i] : nullptr; };
        if (arg == "--seed") {
            const char* v = value();
            if (!v || !parseNumber(v, line.seed)) return tolvar::tr("--seed needs a number");
            line.seeded = true;
        } else if (arg == "--rules") {
            const char* v = value();
            if (!v) return tolvar::tr("--rules needs a file");
            line.rulesFile = v;
        } else if (arg == "--autoplay") {
            const char* v = value();
            if (!v || !parseNumber(v, line.bench.games) || line.bench.games == 0)
                return tolvar::tr("--autoplay needs a number of games");
            line.autoplay = true;
        } else if (arg == "--game") {
            const char* v = value();
            if (!v) return tolvar::tr("--game needs a title");
            line.bench.title = v;
        } else if (arg == "--player") {
            const char* v = value();
            const std::string player = v ? v : "";
            if (player != "random" && player != "greedy") return tolvar::tr("--player needs random or greedy");
            line.bench.player = player == "greedy" ? tolvar::sim::Player::Greedy : tolvar::sim::Player::Random;
        } else if (arg == "--jobs") {
            const char* v = value();
            if (!v || !parseNumber(v, jobs) || jobs == 0 || jobs > 256) return tolvar::tr("--jobs needs a number from 1 to 256");
            line.bench.jobs = static_cast<unsigned>(jobs);
        } else if (arg == "--csv") {
            const char* v = value();
            if (!v) return tolvar::tr("--csv needs a file");
            line.bench.csvFile = v;
        } else if (arg.size() > 1 && arg[0] == '-') {
            return tolvar::trf("unknown option %s", arg);
        } else if (line.scriptFile.empty()) {
            line.scriptFile = arg;
        } else {
            return tolvar::tr("only one script may be given");
        }
    }
    if (line.autoplay && line.bench.title.empty()) return tolvar::tr("--autoplay needs --game NAME");
    if (line.autoplay && !line.scriptFile.empty()) return tolvar::tr("--autoplay plays no script");
    if (!line.autoplay && (!line.bench.title.empty() || !line.bench.csvFile.empty() || jobs != 1))
        return tolvar::tr("--game, --player, --jobs and --csv go with --autoplay");
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    // Line-buffered output, so the diagnostics and the runner's errors interleave sanely
    // when both go to one pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);

    tolvar::startInPlayersLanguage();
    const std::string help = std::string(tolvar::tr(kUsage)) + "\n" + tolvar::tr(kOptions) +
                             tolvar::tr(tolvar::sim::ScriptRunner::commandHelp());
    if (tolvar::answerHelpOrVersion(argc, argv, "tolvar-sim", help)) return 0;

    CommandLine line;
    if (const std::string why = parseCommandLine(argc, argv, line); !why.empty()) return usage(why);

    std::uint32_t seed = static_cast<std::uint32_t>(line.seed);
    if (!line.seeded) {
        timeval now{};
        gettimeofday(&now, nullptr);
        seed = static_cast<std::uint32_t>(now.tv_usec);
    }

    // The bench's table stands alone on standard output: the lines of setting up the data folder
    // are not printed.
    std::fflush(stdout);
    const int savedOut = line.autoplay ? dup(STDOUT_FILENO) : -1;
    if (savedOut >= 0) {
        const int devNull = open("/dev/null", O_WRONLY);
        if (devNull >= 0) dup2(devNull, STDOUT_FILENO), close(devNull);
    }
    tolvar::GameLibrary library;
    if (!line.rulesFile.empty()) {
        if (!library.loadRulesFromFile(line.rulesFile)) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: %s\n", tolvar::trf("the rules file %s cannot be read", line.rulesFile).c_str());
            return 2;
        }
    } else {
        library.setupGameSelections();
    }

    std::fflush(stdout);
    if (savedOut >= 0) dup2(savedOut, STDOUT_FILENO), close(savedOut);

    if (line.autoplay) {
        const auto& titles = library.gameMenu();
        if (std::find(titles.begin() + 1, titles.end(), line.bench.title) == titles.end()) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: %s\n",
                         tolvar::trf("no game titled \"%s\" in the game menu", line.bench.title).c_str());
            return 2;
        }
        library.selectGame(line.bench.title);
        if (line.seeded) line.bench.seed = line.seed;
        return tolvar::sim::runAutoplay(library, line.bench);
    }

    std::FILE* in = stdin;
    if (!line.scriptFile.empty()) {
        // A named pipe given as the script is refused rather than waited on; standard input
        // (no script named) may be anything.
        auto opened = tolvar::openRegularFile(line.scriptFile);
        if (auto* refusal = std::get_if<tolvar::ReadRefusal>(&opened)) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: %s\n",
                         tolvar::trf("cannot open the script %s: %s", tolvar::shownPath(line.scriptFile),
                                     refusal->reason).c_str());
            return 2;
        }
        in = fdopen(std::get<tolvar::FileDescriptor>(opened).fd, "r");
        if (!in) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: %s\n",
                         tolvar::trf("cannot open the script %s: %s", tolvar::shownPath(line.scriptFile),
                                     std::strerror(errno)).c_str());
            return 2;
        }
        std::get<tolvar::FileDescriptor>(opened).release();
    }
    tolvar::ActionsMenu menu;
    int status = 0;
    {
        tolvar::sim::ScriptRunner runner(library, menu, seed);
        status = runner.run(in);
    }
    if (in != stdin) std::fclose(in);
    std::fflush(stdout);
    return status;
}
