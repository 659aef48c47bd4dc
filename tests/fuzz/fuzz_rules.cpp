// Arbitrary bytes as a rules file: parse them, build a game from the root and from every top-level
// value (binding keys to one menu for the whole run, as the game does), and run the rules checker
// over them with the line and JSON forms of each finding.
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <variant>

#include "checker/RulesChecker.h"
#include "core/PlistFile.h"
#include "rules/RulesDict.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The conversion's diagnostic lines would drown the fuzzer's own report.
    const int devNull = open("/dev/null", O_WRONLY);
    if (devNull >= 0) {
        dup2(devNull, STDOUT_FILENO);
        close(devNull);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static tolvar::ActionsMenu menu;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const tolvar::checker::CheckReport report = tolvar::checker::checkRulesText(bytes);
    for (const auto& problem : report.problems) (void)tolvar::checker::formatProblem("f", problem);
    (void)tolvar::checker::problemsAsJson("f", report.problems);
    auto result = tolvar::parsePropertyList(bytes);
    const tolvar::Value* root = std::get_if<tolvar::Value>(&result);
    if (!root) return 0;
    auto game = tolvar::createStructsFromRulesDict(root, menu);
    if (const tolvar::Dictionary* games = root->asDictionary()) {
        for (const auto& entry : games->entries()) game = tolvar::createStructsFromRulesDict(&entry.second, menu);
    }
    // What is read must also write back as XML that reads again.
    const std::string xml = tolvar::toXmlPropertyList(*root);
    if (!xml.empty()) (void)tolvar::parsePropertyList(xml);
    return 0;
}
