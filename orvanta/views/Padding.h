#pragma once
// Padding: four side sizes around something (a cell's annotation, the space around its thumbnail,
// the gaps between cells), addressed by the toolkit's side bits: 1 left, 2 top, 4 right, 8 bottom.
//
// Contract: plain copyable value, all zero at the start. set takes a mask of sides (15 sets all
// four); get reads one side, the lowest bit of the mask counting.

namespace Orvanta {

class Padding {
public:
    enum Side { Left = 1, Top = 2, Right = 4, Bottom = 8 };
    static constexpr int kAll = Left | Top | Right | Bottom;

    int get(int side) const {
        for (int i = 0; i < 4; ++i)
            if (side & (1 << i)) return mSizes[i];
        return 0;
    }
    void set(int size, int sides) {
        for (int i = 0; i < 4; ++i)
            if (sides & (1 << i)) mSizes[i] = size;
    }
    // Left and right together, and top and bottom together.
    int horizontal() const { return mSizes[0] + mSizes[2]; }
    int vertical() const { return mSizes[1] + mSizes[3]; }

private:
    int mSizes[4] = {};
};

}  // namespace Orvanta
