// The game window's picture (1024 x 768 units) in a window of any size: scaled as large as it
// fits with its proportions kept, centred, with bars at the sides or at the top and bottom; and
// the window's points mapped back onto the picture, so a click lands on the same cell at any size.
#pragma once

namespace tolvar {

struct PictureFit {
    float pictureWidth = 0.0f;
    float pictureHeight = 0.0f;
    // Where the picture lies in the window, in the window's pixels from its lower left corner.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    // The picture fitted into a window of windowWidth x windowHeight pixels.
    static PictureFit within(int windowWidth, int windowHeight, float pictureWidth, float pictureHeight);

    // A point of the window (pixels from its lower left) in the picture's units from the
    // picture's lower left; points on the bars fall outside 0..pictureWidth, 0..pictureHeight.
    void toPicture(float windowX, float windowY, float& pictureX, float& pictureY) const;
};

// The largest window size, at most the picture's own and in its proportions, whose frame (the
// decorations of border x border pixels added) fits an area of areaWidth x areaHeight.
void openingSize(float pictureWidth, float pictureHeight, int areaWidth, int areaHeight, int borderWidth,
                 int borderHeight, int& width, int& height);

}  // namespace tolvar
