// Textures from images and strings.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// An image as the loaders need it: rows top first, 8 bits per channel, R G B (A).
struct Image {
    int width = 0;
    int height = 0;
    bool hasAlpha = false;
    int bitsPerPixel = 0;
    int bytesPerRow = 0;
    std::vector<std::uint8_t> pixels;  // height x bytesPerRow
};

// Loads an image file; false when it cannot be read (the file and the problem are reported on
// standard error). True-colour images become 24-bit RGB or 32-bit RGBA; grey and palette images
// keep their own depth (8 bits per pixel, 16 for 16-bit grey, fewer for small palettes).
bool loadImageFile(const char* path, Image& image);

// The panels a search for a named image shows the player. The alert is modal with one button;
// the open panel returns the chosen file, or an empty string when the player cancels. An empty
// function stands for the default: the alert goes to standard error, and the open panel is
// zenity's file selection (no zenity: cancelled).
using TextureAlertHook =
    std::function<void(const std::string& title, const std::string& message, const std::string& button)>;
using TextureOpenPanelHook = std::function<std::string()>;
struct ResourcePanels {
    TextureAlertHook alert;
    TextureOpenPanelHook openPanel;
};

// The size an image of imageWidth x imageHeight goes up at to fill a picture of neededWidth x
// neededHeight pixels: the needed size, never larger than the image's own in either direction. A
// needed size of 0 (or less) asks for the image's own.
struct TextureSize {
    int width = 0;
    int height = 0;
    bool operator==(const TextureSize&) const = default;
};
TextureSize uploadSize(int imageWidth, int imageHeight, int neededWidth, int neededHeight);

// The image route: the largest power-of-two block at the image's lower-left corner, rows turned
// bottom-up. 24-bit RGB and 32-bit RGBA only; other depths change nothing.
void TextureFromNSImage(const Image& image, std::uint32_t* textureName, int* textureWidth,
                        int* textureHeight);
std::uint32_t truncPowerOf2(std::uint32_t n);
// Named images with recovery, showing the panels given.
class ResourceTextures {
public:
    explicit ResourceTextures(ResourcePanels panels = {}) : panels_(std::move(panels)) {}
    // A named image: asks the player to locate a missing one, else a substitute. A call made
    // while one is under way (from drawing that runs while its panels are up) does nothing.
    void TextureFromResource(const char* name, std::uint32_t* textureName, int* textureWidth,
                             int* textureHeight);

private:
    void alert(const std::string& message) const;
    std::string runOpenPanel() const;

    ResourcePanels panels_;
    bool searching_ = false;
};
void StringToTexture(const char* text, const char* fontName, std::int32_t fontSize,
                     std::uint32_t* textureName, std::uint32_t width, std::uint32_t height,
                     float red, float green, float blue);
