// Textures from images, named images and strings.
#include "Textures.h"

#include <GL/gl.h>
#include <SDL.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "FileIO.h"
#include "ImageFile.h"
#include "TextPixels.h"

namespace {

namespace fs = std::filesystem;
using tolvar::images::isWellFormed;
using tolvar::images::prepareUnpack;

// The message of the "locate" alert lives in a buffer of this many bytes, terminator included.
constexpr std::size_t kMessageBufferSize = 2048;
constexpr const char* kLocatePrefix = "Please locate resource = ";
constexpr const char* kSubstituteMessage =
    "Warning: Substituting a different texture.  This may affect results.";

bool zenityInstalled() {
    const char* path = std::getenv("PATH");
    if (path == nullptr) return false;
    std::string dirs(path);
    std::size_t start = 0;
    while (start <= dirs.size()) {
        const std::size_t end = std::min(dirs.find(':', start), dirs.size());
        const std::string dir = dirs.substr(start, end - start);
        const std::string candidate = (dir.empty() ? std::string(".") : dir) + "/zenity";
        if (access(candidate.c_str(), X_OK) == 0) return true;
        start = end + 1;
    }
    return false;
}

struct PipeCloser {
    void operator()(FILE* f) const { pclose(f); }
};

std::string openPanelWithZenity() {
    if (!zenityInstalled()) return {};
    std::fflush(stdout);
    std::unique_ptr<FILE, PipeCloser> pipe(
        popen("zenity --file-selection --title='Open' 2>/dev/null", "r"));
    if (!pipe) return {};
    std::string chosen;
    char chunk[512];
    while (std::fgets(chunk, sizeof chunk, pipe.get()) != nullptr) chosen += chunk;
    const int status = pclose(pipe.release());
    if (status != 0) return {};  // cancelled or closed
    while (!chosen.empty() && (chosen.back() == '\n' || chosen.back() == '\r')) chosen.pop_back();
    // Several files may come back separated by '|'; the first one counts.
    const std::size_t bar = chosen.find('|');
    if (bar != std::string::npos) chosen.resize(bar);
    return chosen;
}

// "Please locate resource = " and the name, cut so that the whole fits the message buffer
// without splitting a UTF-8 character.
std::string locateMessage(const char* name) {
    std::string message = kLocatePrefix;
    const std::size_t room = kMessageBufferSize - 1 - message.size();
    std::string shown(name);
    if (shown.size() > room) {
        std::size_t cut = room;
        while (cut > 0 && (static_cast<unsigned char>(shown[cut]) & 0xC0) == 0x80) --cut;
        shown.resize(cut);
    }
    return message + shown;
}

// The game's images are resources named like the image with one of the usual extensions;
// a name that already carries its extension is found as it is.
std::string findNamedImage(const char* name) {
    if (name == nullptr || *name == '\0' || std::strchr(name, '/') != nullptr) return {};
    const std::string folder = resourceFolder();
    if (folder.empty()) return {};
    static constexpr const char* kExtensions[] = {"png", "bmp", "jpg", "jpeg",
                                                  "PNG", "BMP", "JPG", "JPEG"};
    std::error_code error;
    const fs::path exact = fs::path(folder) / name;
    if (fs::path(name).has_extension() && fs::is_regular_file(exact, error)) return exact.string();
    for (const char* extension : kExtensions) {
        const fs::path candidate = fs::path(folder) / (std::string(name) + "." + extension);
        if (fs::is_regular_file(candidate, error)) return candidate.string();
    }
    return {};
}

// Raises a flag for as long as it lives.
struct FlagGuard {
    explicit FlagGuard(bool& flag) : flag_(flag) { flag_ = true; }
    ~FlagGuard() { flag_ = false; }
    FlagGuard(const FlagGuard&) = delete;
    FlagGuard& operator=(const FlagGuard&) = delete;
    bool& flag_;
};

std::uint8_t channelByte(float value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
}

}  // namespace

bool loadImageFile(const char* path, Image& image) {
    std::string reason;
    if (tolvar::images::readImageFile(path, false, image, reason)) return true;
    std::fprintf(stderr, "%s: %s\n", path != nullptr ? path : "(no file)", reason.c_str());
    return false;
}

void ResourceTextures::alert(const std::string& message) const {
    if (panels_.alert)
        panels_.alert("Alert", message, "OK");
    else
        std::fprintf(stderr, "%s\n", message.c_str());
}

std::string ResourceTextures::runOpenPanel() const {
    return panels_.openPanel ? panels_.openPanel() : openPanelWithZenity();
}

TextureSize uploadSize(int imageWidth, int imageHeight, int neededWidth, int neededHeight) {
    const auto side = [](int image, int needed) { return needed > 0 ? std::max(1, std::min(image, needed)) : image; };
    return {side(imageWidth, neededWidth), side(imageHeight, neededHeight)};
}

std::uint32_t truncPowerOf2(std::uint32_t n) {
    std::uint32_t shifts = 0;
    while ((n >>= 1) != 0) ++shifts;
    return std::uint32_t{1} << shifts;
}

void TextureFromNSImage(const Image& image, std::uint32_t* textureName, int* textureWidth,
                        int* textureHeight) {
    if (textureName == nullptr) return;
    int bytesPerPixel = 0;
    GLenum format = 0;
    if (image.hasAlpha && image.bitsPerPixel == 32) {
        bytesPerPixel = 4;
        format = GL_RGBA;
    } else if (!image.hasAlpha && image.bitsPerPixel == 24) {
        bytesPerPixel = 3;
        format = GL_RGB;
    } else {
        return;  // grey, palette and deep images are not taken
    }
    if (!isWellFormed(image)) return;

    // OpenGL wants the bottom row first.
    const std::size_t rowBytes = static_cast<std::size_t>(image.bytesPerRow);
    const std::size_t rows = static_cast<std::size_t>(image.height);
    std::vector<std::uint8_t> flipped(rowBytes * rows);
    for (std::size_t i = 0; i < rows; ++i)
        std::memcpy(flipped.data() + i * rowBytes, image.pixels.data() + (rows - 1 - i) * rowBytes,
                    rowBytes);
    std::vector<std::uint8_t> packed;
    const std::uint8_t* upload = prepareUnpack(flipped.data(), image.width, image.height,
                                               image.bytesPerRow, bytesPerPixel, packed);

    if (*textureName == 0) glGenTextures(1, textureName);
    glBindTexture(GL_TEXTURE_2D, *textureName);
    const int width = static_cast<int>(truncPowerOf2(static_cast<std::uint32_t>(image.width)));
    const int height = static_cast<int>(truncPowerOf2(static_cast<std::uint32_t>(image.height)));
    if (textureWidth != nullptr) *textureWidth = width;
    if (textureHeight != nullptr) *textureHeight = height;
    // Rows run bottom-up, so the block uploaded is the image's lower-left corner.
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), width, height, 0, format,
                 GL_UNSIGNED_BYTE, upload);
    glEnable(GL_TEXTURE_2D);
    glTexEnvf(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
}

void ResourceTextures::TextureFromResource(const char* name, std::uint32_t* textureName, int* textureWidth,
                                          int* textureHeight) {
    // Drawing that runs while the panels below are up must not start a second search.
    if (searching_) return;
    FlagGuard guard(searching_);
    if (textureName == nullptr) return;
    if (name == nullptr) name = "";

    Image image;
    bool haveImage = false;
    const std::string found = findNamedImage(name);
    if (!found.empty()) haveImage = loadImageFile(found.c_str(), image);
    if (!haveImage) {
        alert(locateMessage(name));
        const std::string chosen = runOpenPanel();
        if (!chosen.empty()) haveImage = loadImageFile(chosen.c_str(), image);
    }
    if (!haveImage) {
        alert(kSubstituteMessage);
        StringToTexture(" 0 0 0 0 0 0 0 0 0 0 0 0 0 0", "Helvetica", 36, textureName, 128, 128,
                        0.0f, 0.0f, 1.0f);
        return;  // the caller's width and height stay as they were
    }
    TextureFromNSImage(image, textureName, textureWidth, textureHeight);
}

void StringToTexture(const char* text, const char* fontName, std::int32_t fontSize,
                     std::uint32_t* textureName, std::uint32_t width, std::uint32_t height,
                     float red, float green, float blue) {
    if (textureName == nullptr) return;
    // An empty, transparent picture of the requested size with the text from its top left,
    // broken into lines that fit the width.
    Image image;
    const bool sizeUsable = width > 0 && height > 0 &&
                            width <= static_cast<std::uint32_t>(tolvar::images::kMaxSide) &&
                            height <= static_cast<std::uint32_t>(tolvar::images::kMaxSide) &&
                            std::int64_t{width} * std::int64_t{height} <= tolvar::images::kMaxPixels;
    if (sizeUsable) {
        image.width = static_cast<int>(width);
        image.height = static_cast<int>(height);
        image.hasAlpha = true;
        image.bitsPerPixel = 32;
        image.bytesPerRow = image.width * 4;
        image.pixels.assign(static_cast<std::size_t>(image.bytesPerRow) * height, 0);
        const bool colourUsable = !std::isnan(red) && !std::isnan(green) && !std::isnan(blue);
        const std::uint8_t r = colourUsable ? channelByte(red) : 255;
        const std::uint8_t g = colourUsable ? channelByte(green) : 255;
        const std::uint8_t b = colourUsable ? channelByte(blue) : 255;
        tolvar::text::Rendered drawn;
        if (tolvar::text::renderText(text, fontName != nullptr ? fontName : "", fontSize, r, g, b,
                                     image.width, drawn)) {
            const int columns = std::min(drawn.width, image.width);
            const int lines = std::min(drawn.height, image.height);
            for (int y = 0; y < lines; ++y)
                std::memcpy(image.pixels.data() + static_cast<std::size_t>(y) * image.bytesPerRow,
                            drawn.rgba.data() + static_cast<std::size_t>(y) * drawn.width * 4,
                            static_cast<std::size_t>(columns) * 4);
        }
    }
    if (*textureName == 0) glGenTextures(1, textureName);
    glBindTexture(GL_TEXTURE_2D, *textureName);
    int ignoredWidth = 0;
    int ignoredHeight = 0;
    TextureFromNSImage(image, textureName, &ignoredWidth, &ignoredHeight);
}
