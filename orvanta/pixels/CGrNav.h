#pragma once
// CGrNav: the plain form of a pixel view handed to image-analysis code: the address of pixel (0, 0),
// the byte strides down and across, and the size. A DibWalker fills one with getGrNav(); the view is
// active until the CGrNav is destroyed.

namespace Orvanta {

class CGrNav {
public:
    CGrNav() = default;
    CGrNav(unsigned char* buffer, int deltaY, int deltaX, int width, int height)
        : buffer(buffer), deltaY(deltaY), deltaX(deltaX), width(width), height(height), active(true) {}
    virtual ~CGrNav() { active = false; }

    unsigned char* buffer = nullptr;
    int deltaY = 0;
    int deltaX = 0;
    int width = 0;
    int height = 0;
    bool active = false;
};

}  // namespace Orvanta
