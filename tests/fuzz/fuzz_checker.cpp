// Arbitrary bytes as a rules file for the checker: the position scanner, every game check, and
// the line and JSON forms of each finding.
#include <cstddef>
#include <cstdint>
#include <string>

#include "checker/RulesChecker.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const tolvar::checker::CheckReport report = tolvar::checker::checkRulesText(bytes);
    for (const auto& problem : report.problems) (void)tolvar::checker::formatProblem("f", problem);
    (void)tolvar::checker::problemsAsJson("f", report.problems);
    (void)report.hasErrors();
    return 0;
}
