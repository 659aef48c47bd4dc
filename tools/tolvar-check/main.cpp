// tolvar-check [--json] FILE...
//
// Reports every problem of each rules file, one line each ("FILE:LINE:COLUMN: error: GAME: KEY:
// message"), or one JSON object per file with --json. Exit status 1 when any file has an error,
// 2 for a wrong command line, 0 otherwise.
#include <cstdio>
#include <string>
#include <vector>

#include "checker/RulesChecker.h"
#include "core/CommandLine.h"
#include "core/Translate.h"

namespace {

constexpr const char* kUsage = N_(
    "usage: tolvar-check [--json] FILE...\n"
    "Checks rules files and reports each problem as FILE:LINE:COLUMN: error|warning: GAME: KEY: message\n"
    "(a binary property list gives the path of keys instead of the line and column).\n"
    "  --json     one JSON object per file: {\"file\", \"problems\": [{\"severity\", \"line\", \"column\",\n"
    "             \"path\", \"game\", \"key\", \"message\"}]}\n"
    "  --help     this text\n"
    "  --version  the version\n"
    "Exit status: 1 when a file has an error, 0 otherwise (warnings alone pass), 2 for a wrong command line.\n");

}  // namespace

int main(int argc, char** argv) {
    tolvar::startInPlayersLanguage();
    const char* usage = tolvar::tr(kUsage);
    if (tolvar::answerHelpOrVersion(argc, argv, "tolvar-check", usage)) return 0;
    bool json = false;
    std::vector<std::string> files;
    bool optionsDone = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (!optionsDone && arg == "--") {
            optionsDone = true;
        } else if (!optionsDone && arg == "--json") {
            json = true;
        } else if (!optionsDone && arg.size() > 1 && arg[0] == '-') {
            std::fprintf(stderr, "tolvar-check: %s\n%s", tolvar::trf("unknown option %s", arg).c_str(), usage);
            return 2;
        } else {
            files.push_back(arg);
        }
    }
    if (files.empty()) {
        std::fprintf(stderr, "tolvar-check: %s\n%s", tolvar::tr("no file given"), usage);
        return 2;
    }
    bool errors = false;
    for (const std::string& file : files) {
        const tolvar::checker::CheckReport report = tolvar::checker::checkRulesFile(file);
        errors = errors || report.hasErrors();
        if (json) {
            std::printf("%s\n", tolvar::checker::problemsAsJson(file, report.problems).c_str());
        } else {
            for (const auto& problem : report.problems)
                std::printf("%s\n", tolvar::checker::formatProblem(file, problem).c_str());
        }
    }
    return errors ? 1 : 0;
}
