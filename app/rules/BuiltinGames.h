// The three games written into a fresh "RulesDict.dict": "Vexamor", "Trindle" and "Glimmet".
#pragma once

#include <string>

#include "core/PropertyList.h"

namespace tolvar {

Value createTestGameOne();    // "Vexamor"
Value createTestGameTwo();    // "Trindle"
Value createTestGameThree();  // "Glimmet"

// createTestRulesDict: the three games under their names, written to rulesPath in one step (a
// failed write leaves no file; its reason goes to standard error and the file is tried again at
// the next launch). Returns the dictionary, which becomes allGameRules; notWritten is left empty,
// or says why the file is not there as standard error says it ("cannot be written (No space left
// on device); the built-in games are played without it").
Value createTestRulesDict(const std::string& rulesPath, std::string& notWritten);

}  // namespace tolvar
