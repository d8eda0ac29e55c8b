#pragma once
// ColorizeOp: maps a picture through three tone curves (opType given at creation; 8 wherever the
// library makes one). BWOp (9) and SepiaOp (10) are the same operation with their own types.
//
// Contract: red, green and blue are the output levels, between 0 and 1 exclusive, to which mid-grey
// maps in each colour. Every pixel is first reduced to one grey index 5·green + 2·blue + red
// (0..2040), which then passes through one gamma curve per colour. The result has the input's form
// (header and pixel size); the undo record is the whole earlier picture: the input itself for doOp,
// a copy made first for doOpInPlace. 1-byte pictures have no colours to map and throw the walker's
// Exception "getPixel call expecting RGB dib".

#include "orvanta/editing/EditingOp.h"

namespace Orvanta {

class CGrNav;

class ColorizeOp : public EditingOp {
public:
    static ColorizeOp* create(double red, double green, double blue, int opType);

    Dib* doOp(Dib* dib, UndoOp** undo) override;
    bool supportsInPlaceOp() override { return true; }
    void doOpInPlace(Dib* dib, UndoOp** undo) override;

    double getRed() const { return mRed; }
    double getGreen() const { return mGreen; }
    double getBlue() const { return mBlue; }

    // The tone curves for these levels: 2041 rows of blue, green and red bytes.
    static void buildToneTable(float red, float green, float blue, unsigned char table[2041][3]);
    // Runs the table over from into to (same size; they may be the same pixels).
    static void applyToneTable(const unsigned char table[2041][3], const CGrNav& from, const CGrNav& to);

protected:
    ColorizeOp(double red, double green, double blue, int opType)
        : EditingOp(opType), mRed(red), mGreen(green), mBlue(blue) {}

private:
    void runKernel(Dib* from, Dib* to) const;

    double mRed;
    double mGreen;
    double mBlue;
};

}  // namespace Orvanta
