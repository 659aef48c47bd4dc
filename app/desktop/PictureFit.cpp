#include "desktop/PictureFit.h"

#include <algorithm>
#include <cmath>

namespace tolvar {

PictureFit PictureFit::within(int windowWidth, int windowHeight, float pictureWidth, float pictureHeight) {
    PictureFit fit;
    fit.pictureWidth = pictureWidth;
    fit.pictureHeight = pictureHeight;
    if (windowWidth <= 0 || windowHeight <= 0 || pictureWidth <= 0.0f || pictureHeight <= 0.0f) return fit;
    const double scale = std::min(windowWidth / static_cast<double>(pictureWidth),
                                  windowHeight / static_cast<double>(pictureHeight));
    fit.width = std::clamp(static_cast<int>(std::lround(pictureWidth * scale)), 1, windowWidth);
    fit.height = std::clamp(static_cast<int>(std::lround(pictureHeight * scale)), 1, windowHeight);
    fit.x = (windowWidth - fit.width) / 2;
    fit.y = (windowHeight - fit.height) / 2;
    return fit;
}

void PictureFit::toPicture(float windowX, float windowY, float& pictureX, float& pictureY) const {
    if (width <= 0 || height <= 0) {
        pictureX = windowX;
        pictureY = windowY;
        return;
    }
    pictureX = (windowX - static_cast<float>(x)) * pictureWidth / static_cast<float>(width);
    pictureY = (windowY - static_cast<float>(y)) * pictureHeight / static_cast<float>(height);
}

void openingSize(float pictureWidth, float pictureHeight, int areaWidth, int areaHeight, int borderWidth,
                 int borderHeight, int& width, int& height) {
    const double room = std::min({1.0, (areaWidth - borderWidth) / static_cast<double>(pictureWidth),
                                  (areaHeight - borderHeight) / static_cast<double>(pictureHeight)});
    const double scale = std::max(room, 0.25);  // a screen too small still gets a window one can see
    width = static_cast<int>(std::floor(pictureWidth * scale));
    height = static_cast<int>(std::floor(pictureHeight * scale));
}

}  // namespace tolvar
