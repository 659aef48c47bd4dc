// Loads the game menu as the game does at launch (creating the rules file when it is missing)
// and lists it, one title a line, after a line "menu:". Exits 1 when the rules file cannot be read.
#include <cstdio>

#include "rules/GameLibrary.h"

int main() {
    tolvar::GameLibrary library;
    const bool ok = library.setupGameSelections();
    printf("\nmenu:\n");
    for (const std::string& title : library.gameMenu()) printf("%s\n", title.c_str());
    return ok ? 0 : 1;
}
