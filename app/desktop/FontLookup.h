// Finding an installed font file by family name.
#pragma once

#include <string>

namespace tolvar {

// The file of the regular face that fontconfig picks for family ("sans-serif", "Helvetica", ...),
// or an empty string when fontconfig finds nothing usable (a file that exists and is TrueType or
// OpenType).
std::string findFontFile(const std::string& family);

}  // namespace tolvar
