// The rules checker: every problem of a rules file that the game would otherwise pass over in
// silence, each with where it stands in the file and what was found and what is expected.
// The game, tolvar-check and the tests all use it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "checker/XmlPositions.h"
#include "core/PropertyList.h"

namespace tolvar::checker {

enum class Severity { Error, Warning };

struct Problem {
    Severity severity = Severity::Error;
    TextPosition at;   // line 0 when the file has no lines (a binary property list)
    std::string path;  // the keys from the top: "Vexamor/SupportedEvents/2/EventType"
    std::string game;  // the game's title; empty for the file as a whole
    std::string key;   // the key concerned; empty for a whole game or the file
    std::string message;
};

struct CheckReport {
    std::vector<Problem> problems;
    std::optional<Value> rules;  // the file's games, when the file could be read

    bool hasErrors() const;
    // The problems of the game titled title, in the file's order.
    std::vector<Problem> problemsOf(const std::string& title) const;
    // The problems that concern the file rather than one game.
    std::vector<Problem> fileProblems() const;
};

// Checks the bytes of a rules file (an XML or binary property list); the sound files it names are
// looked for in folder (the rules file's; empty: the current folder).
CheckReport checkRulesText(const std::string& bytes, const std::string& folder = {});
// Reads and checks the file at path; a file that cannot be read is one problem.
CheckReport checkRulesFile(const std::string& path);
// Checks one game's rules; node of positions, when known, says where its parts stand in the text;
// folder is where its sound files are.
std::vector<Problem> checkGame(const std::string& title, const Value& rules, const XmlPositions* positions,
                               XmlPositions::Node node, const std::string& folder = {});
// Why an action's "Sound" cannot play (a name that is no sound of the game and no readable sound
// file in folder), or nothing.
std::string soundProblem(const std::string& sound, const std::string& folder);

// "FILE:LINE:COLUMN: error: GAME: KEY: message", or with the path of keys in place of the line
// and column when the file has no lines. Parts with nothing to say are left out.
std::string formatProblem(const std::string& file, const Problem& problem);
// One JSON object per file: {"file": ..., "problems": [{"severity", "line", "column", "path",
// "game", "key", "message"}, ...]}.
std::string problemsAsJson(const std::string& file, const std::vector<Problem>& problems);

}  // namespace tolvar::checker
