#include "CommandLine.h"

#include <cstdio>
#include <string_view>

namespace tolvar {

const char* tolvarVersion() { return TOLVAR_VERSION; }

bool answerHelpOrVersion(int argc, char** argv, std::string_view program, std::string_view help) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--help") {
            std::fwrite(help.data(), 1, help.size(), stdout);
            return true;
        }
        if (arg == "--version") {
            std::printf("%.*s %s\n", int(program.size()), program.data(), tolvarVersion());
            return true;
        }
    }
    return false;
}

}  // namespace tolvar
