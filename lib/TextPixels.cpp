// Text drawn into pixels: fontconfig resolves the family, SDL2_ttf draws the glyphs.
#include "TextPixels.h"

#include <SDL.h>
#include <SDL_ttf.h>
#include <fontconfig/fontconfig.h>
#include <sys/stat.h>

#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace tolvar::text {
namespace {

struct PatternDeleter {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;
struct FontSetDeleter {
    void operator()(FcFontSet* s) const { FcFontSetDestroy(s); }
};
using FontSetPtr = std::unique_ptr<FcFontSet, FontSetDeleter>;
struct FontDeleter {
    void operator()(TTF_Font* f) const { TTF_CloseFont(f); }
};
using FontPtr = std::unique_ptr<TTF_Font, FontDeleter>;
struct SurfaceDeleter {
    void operator()(SDL_Surface* s) const { SDL_FreeSurface(s); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceDeleter>;

// Open fonts kept for the sizes in use; past this many, the cache starts again.
constexpr std::size_t kOpenFontsKept = 24;

bool ttfReady() {
    static const bool ready = TTF_WasInit() > 0 || TTF_Init() == 0;
    return ready;
}

// A file every drawer of text reads: TrueType or OpenType (by its name), and a regular file.
bool readableFontFile(const std::string& path) {
    if (path.size() < 5) return false;
    std::string ext = path.substr(path.size() - 4);
    for (char& c : ext) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    if (ext != ".ttf" && ext != ".otf") return false;
    struct stat st {};
    return ::stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode);
}

std::string matchFamily(const std::string& family) {
    if (FcInit() == FcFalse) return {};
    PatternPtr pattern(family.empty() ? FcPatternCreate()
                                      : FcNameParse(reinterpret_cast<const FcChar8*>(family.c_str())));
    if (!pattern) return {};
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern.get(), FC_SLANT, FC_SLANT_ROMAN);
    // Only fonts SDL2_ttf can draw at any size: outline fonts.
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    // The closest font first; the first one whose file every drawer reads wins.
    FontSetPtr sorted(FcFontSort(nullptr, pattern.get(), FcFalse, nullptr, &result));
    if (!sorted) return {};
    for (int i = 0; i < sorted->nfont; ++i) {
        FcChar8* file = nullptr;
        if (FcPatternGetString(sorted->fonts[i], FC_FILE, 0, &file) != FcResultMatch || file == nullptr) continue;
        std::string path(reinterpret_cast<const char*>(file));
        if (readableFontFile(path)) return path;
    }
    return {};
}

// The open font of a family at a size, kept for the next text; callers hold fontGuard().
std::mutex& fontGuard() {
    static std::mutex guard;
    return guard;
}
TTF_Font* openFont(const std::string& family, int pointSize) {
    static std::map<std::pair<std::string, int>, FontPtr> open;
    if (pointSize < 1 || pointSize > kMaxPointSize || !ttfReady()) return nullptr;
    const std::string file = fontFileFor(family);
    if (file.empty()) return nullptr;
    const auto key = std::make_pair(file, pointSize);
    if (const auto found = open.find(key); found != open.end()) return found->second.get();
    FontPtr font(TTF_OpenFont(file.c_str(), pointSize));
    if (!font) return nullptr;
    if (open.size() >= kOpenFontsKept) open.clear();
    return open.emplace(key, std::move(font)).first->second.get();
}

}  // namespace

std::string fontFileFor(const std::string& family) {
    // Resolving a family walks fontconfig's configuration; the system's answer for each name is
    // remembered for the whole process, by whichever thread asks.
    static std::mutex guard;
    static std::map<std::string, std::string> resolved;
    const std::lock_guard<std::mutex> lock(guard);
    const auto found = resolved.find(family);
    if (found != resolved.end()) return found->second;
    std::string file = matchFamily(family);
    if (file.empty()) file = matchFamily("sans-serif");
    resolved.emplace(family, file);
    return file;
}

TextSize measureText(const std::string& text, const std::string& family, int pointSize) {
    if (text.empty()) return {};
    const std::lock_guard<std::mutex> lock(fontGuard());
    TTF_Font* font = openFont(family, pointSize);
    TextSize size;
    if (font == nullptr || TTF_SizeUTF8(font, text.c_str(), &size.width, &size.height) != 0) return {};
    size.height = TTF_FontHeight(font);
    return size;
}

bool renderText(const char* text, const std::string& family, int pointSize, std::uint8_t red,
                std::uint8_t green, std::uint8_t blue, int wrapWidth, Rendered& out) {
    out = Rendered{};
    if (text == nullptr || *text == '\0') return false;
    const std::lock_guard<std::mutex> lock(fontGuard());
    TTF_Font* font = openFont(family, pointSize);
    if (font == nullptr) return false;
    const SDL_Color colour{red, green, blue, 255};
    SurfacePtr drawn(wrapWidth > 0
                         ? TTF_RenderUTF8_Blended_Wrapped(font, text, colour, static_cast<Uint32>(wrapWidth))
                         : TTF_RenderUTF8_Blended(font, text, colour));
    if (!drawn) return false;
    SurfacePtr rgba(SDL_ConvertSurfaceFormat(drawn.get(), SDL_PIXELFORMAT_RGBA32, 0));
    if (!rgba) return false;
    if (SDL_MUSTLOCK(rgba.get()) && SDL_LockSurface(rgba.get()) != 0) return false;
    out.width = rgba->w;
    out.height = rgba->h;
    out.ascent = TTF_FontAscent(font);
    const std::size_t row = static_cast<std::size_t>(out.width) * 4;
    out.rgba.resize(row * static_cast<std::size_t>(out.height));
    for (int y = 0; y < out.height; ++y)
        std::memcpy(out.rgba.data() + row * static_cast<std::size_t>(y),
                    static_cast<const std::uint8_t*>(rgba->pixels) +
                        static_cast<std::size_t>(rgba->pitch) * static_cast<std::size_t>(y),
                    row);
    if (SDL_MUSTLOCK(rgba.get())) SDL_UnlockSurface(rgba.get());
    return true;
}

}  // namespace tolvar::text
