#include "core/CommandLine.h"

#include <cstdio>
#include <string_view>

namespace tolvar {

const char* tolvarVersion() { return TOLVAR_VERSION; }

AskedFor helpOrVersionAsked(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--help") return AskedFor::Help;
        if (arg == "--version") return AskedFor::Version;
    }
    return AskedFor::Nothing;
}

void printVersion(std::string_view program) {
    std::printf("%.*s %s\n", int(program.size()), program.data(), tolvarVersion());
}

bool answerHelpOrVersion(int argc, char** argv, std::string_view program, std::string_view help) {
    switch (helpOrVersionAsked(argc, argv)) {
        case AskedFor::Nothing: return false;
        case AskedFor::Help: std::fwrite(help.data(), 1, help.size(), stdout); return true;
        case AskedFor::Version: printVersion(program); return true;
    }
    return false;
}

}  // namespace tolvar
