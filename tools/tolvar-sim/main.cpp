// tolvar-sim [--seed N] [--rules FILE] [SCRIPT]
//
// Plays the game engine without windows, drawing or delays, driven by a script of player
// commands; a seed and a script always give the same transcript.
#include <sys/time.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "ScriptRunner.h"
#include "engine/RandomSequence.h"
#include "platform/CommandLine.h"

namespace {

constexpr const char* kHelp =
    "usage: tolvar-sim [--seed N] [--rules FILE] [SCRIPT]\n"
    "Plays the game engine without a window, driven by the script SCRIPT (or standard\n"
    "input), and prints the engine's diagnostics.\n"
    "\n"
    "  --seed N      fix the random sequence (board, refills, flash)\n"
    "  --rules FILE  read the games from FILE instead of the data folder\n"
    "  --help        show this help and exit\n"
    "  --version     show the version and exit\n";

int usage(const char* why) {
    std::fprintf(stderr, "tolvar-sim: %s\nusage: tolvar-sim [--seed N] [--rules FILE] [SCRIPT]\n",
                 why);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    // Line-buffered output, so the diagnostics and the runner's errors interleave sanely
    // when both go to one pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    if (tolvar::answerHelpOrVersion(argc, argv, "tolvar-sim", kHelp)) return 0;

    bool seeded = false;
    unsigned long seed = 0;
    std::string rulesFile, scriptFile;
    bool haveRules = false, haveScript = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--seed") {
            if (++i >= argc) return usage("--seed needs a number");
            char* end = nullptr;
            errno = 0;
            seed = std::strtoul(argv[i], &end, 10);
            if (end == argv[i] || *end != '\0' || errno != 0 || argv[i][0] == '-')
                return usage("--seed needs a number");
            seeded = true;
        } else if (arg == "--rules") {
            if (++i >= argc) return usage("--rules needs a file");
            rulesFile = argv[i];
            haveRules = true;
        } else if (arg.size() > 1 && arg[0] == '-') {
            return usage(("unknown option " + arg).c_str());
        } else if (!haveScript) {
            scriptFile = arg;
            haveScript = true;
        } else {
            return usage("only one script may be given");
        }
    }

    if (seeded) {
        tolvar::gameRandom().seed(static_cast<std::uint32_t>(seed));
    } else {
        timeval now{};
        gettimeofday(&now, nullptr);
        tolvar::gameRandom().seed(static_cast<std::uint32_t>(now.tv_usec));
    }

    tolvar::GameLibrary library;
    if (haveRules) {
        if (!library.loadRulesFromFile(rulesFile)) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: the rules file %s cannot be read\n", rulesFile.c_str());
            return 2;
        }
    } else {
        library.setupGameSelections();
    }

    std::FILE* in = stdin;
    if (haveScript) {
        in = std::fopen(scriptFile.c_str(), "r");
        if (!in) {
            std::fflush(stdout);
            std::fprintf(stderr, "tolvar-sim: cannot open the script %s: %s\n", scriptFile.c_str(),
                         std::strerror(errno));
            return 2;
        }
    }
    tolvar::ActionsMenu menu;
    int status = 0;
    {
        tolvar::sim::ScriptRunner runner(library, menu);
        status = runner.run(in);
    }
    if (in != stdin) std::fclose(in);
    std::fflush(stdout);
    return status;
}
