// Text drawn into pixels: fontconfig resolves the family, SDL2_ttf draws the glyphs.
#include "TextPixels.h"

#include <SDL.h>
#include <SDL_ttf.h>
#include <fontconfig/fontconfig.h>

#include <cstring>
#include <map>
#include <memory>
#include <mutex>

namespace tolvar::text {
namespace {

struct PatternDeleter {
    void operator()(FcPattern* p) const { FcPatternDestroy(p); }
};
using PatternPtr = std::unique_ptr<FcPattern, PatternDeleter>;
struct FontDeleter {
    void operator()(TTF_Font* f) const { TTF_CloseFont(f); }
};
using FontPtr = std::unique_ptr<TTF_Font, FontDeleter>;
struct SurfaceDeleter {
    void operator()(SDL_Surface* s) const { SDL_FreeSurface(s); }
};
using SurfacePtr = std::unique_ptr<SDL_Surface, SurfaceDeleter>;

bool ttfReady() {
    static const bool ready = TTF_WasInit() > 0 || TTF_Init() == 0;
    return ready;
}

std::string matchFamily(const char* family) {
    if (FcInit() == FcFalse) return {};
    PatternPtr pattern(FcPatternCreate());
    if (!pattern) return {};
    if (family != nullptr && *family != '\0')
        FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    // Only fonts SDL2_ttf can draw: outline fonts.
    FcPatternAddBool(pattern.get(), FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    PatternPtr match(FcFontMatch(nullptr, pattern.get(), &result));
    if (!match) return {};
    FcChar8* file = nullptr;
    if (FcPatternGetString(match.get(), FC_FILE, 0, &file) != FcResultMatch || file == nullptr)
        return {};
    return reinterpret_cast<const char*>(file);
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
    std::string file = matchFamily(family.c_str());
    if (file.empty()) file = matchFamily("sans-serif");
    resolved.emplace(family, file);
    return file;
}

bool renderText(const char* text, const std::string& family, int pointSize, std::uint8_t red,
                std::uint8_t green, std::uint8_t blue, int wrapWidth, Rendered& out) {
    out = Rendered{};
    if (text == nullptr || *text == '\0') return false;
    if (pointSize < 1 || pointSize > kMaxPointSize) return false;
    if (!ttfReady()) return false;
    const std::string file = fontFileFor(family);
    if (file.empty()) return false;
    FontPtr font(TTF_OpenFont(file.c_str(), pointSize));
    if (!font) return false;
    const SDL_Color colour{red, green, blue, 255};
    SurfacePtr drawn(wrapWidth > 0
                         ? TTF_RenderUTF8_Blended_Wrapped(font.get(), text, colour,
                                                          static_cast<Uint32>(wrapWidth))
                         : TTF_RenderUTF8_Blended(font.get(), text, colour));
    if (!drawn) return false;
    SurfacePtr rgba(SDL_ConvertSurfaceFormat(drawn.get(), SDL_PIXELFORMAT_RGBA32, 0));
    if (!rgba) return false;
    if (SDL_MUSTLOCK(rgba.get()) && SDL_LockSurface(rgba.get()) != 0) return false;
    out.width = rgba->w;
    out.height = rgba->h;
    out.ascent = TTF_FontAscent(font.get());
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
