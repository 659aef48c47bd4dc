#include "desktop/FontLookup.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <sys/stat.h>

namespace tolvar {

namespace {
struct PatternDeleter {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;

bool usableFontFile(const std::string& path) {
    if (path.size() < 5) return false;
    std::string ext = path.substr(path.size() - 4);
    for (char& c : ext) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    if (ext != ".ttf" && ext != ".otf") return false;
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}
}  // namespace

std::string findFontFile(const std::string& family) {
    if (!FcInit()) return {};
    PatternPtr pattern(FcNameParse(reinterpret_cast<const FcChar8*>(family.c_str())));
    if (!pattern) return {};
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_ROMAN);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    PatternPtr match(FcFontMatch(nullptr, pattern.get(), &result));
    if (!match) return {};
    FcChar8* file = nullptr;
    if (FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch || !file) return {};
    std::string path(reinterpret_cast<const char*>(file));
    return usableFontFile(path) ? path : std::string();
}

}  // namespace tolvar
