#pragma once
// RolloverToolbarLabel: a toolbar's button: a picture with its caption under it, flat until the
// pointer is over it, when it stands out with a raised edge; held down, the edge is sunken.
//
// Contract: a RolloverLabelButton in behaviour. The picture is the first frame of a strip (through
// Bitmaps, its transparent colour see-through), or the frame setFrame chose; with no picture the
// caption is alone. The caption is centred under the picture, in the text colour, never underlined.
// The minimum size fits the wider of picture and caption, with kPadding round them.

#include "orvanta/toolkit/Bitmaps.h"
#include "orvanta/toolkit/RolloverLabelButton.h"

namespace Orvanta {

class RolloverToolbarLabel : public RolloverLabelButton {
public:
    static RolloverToolbarLabel* create(int id, const CString& text, const Resource& picture, int frames = 1,
                                        COLORREF transparentColor = kNoTransparentColor,
                                        CommandListener* listener = nullptr);

    void setFrame(int frame);
    int getFrame() const { return mFrame; }

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;

    static constexpr int kPadding = 4;
    static constexpr int kPictureGap = 2;

protected:
    RolloverToolbarLabel(int id, const CString& text, Bitmaps* picture);

    void refit() override;
    CRect captionRect() const override;

private:
    CSize pictureSize() const { return mPicture ? mPicture->getFrameSize() : CSize(); }

    OwnedPtr<Bitmaps> mPicture;
    int mFrame = 0;
};

}  // namespace Orvanta
