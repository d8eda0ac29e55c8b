#pragma once
// FrameContainer: a container drawn as a frame with a title standing on its top (or bottom) edge; the
// children live inside the frame.
//
// Contract:
//  - The frame is a border in the widths and colours of the container's style (one pixel of the
//    platform's shadow colour unless set otherwise). The title is a Label with alignment (3, 5), left
//    and top, and a margin of 10 on its left and right; given the vertical alignment 6 it stands on
//    the bottom edge instead.
//  - The border line is broken under the title, from 5 pixels before it to 5 pixels after it. When
//    the title is taller than the border on its side, the line moves in by half the difference, so
//    that it runs through the title's middle, and the content rectangle (the client rectangle less
//    the borders) starts below the title on that side.
//  - The other children are laid out in the content rectangle as a plain Container's are.

#include "orvanta/foundation/StringOrResource.h"
#include "orvanta/toolkit/Container.h"
#include "orvanta/toolkit/Label.h"

namespace Orvanta {

class FrameContainer : public Container {
public:
    static FrameContainer* create(const StringOrResource& title, int style = 0, bool tabStop = false);

    Label* getTitle() const { return mTitle; }
    void setTitle(const StringOrResource& title);

    CRect getContentRect() const override;
    void layout() override;
    void layoutChild(Control* child) override;
    void paintBorders(HDC dc) override;
    void paintBackground(HDC dc) override;

    static constexpr int kTitleMargin = 10;
    static constexpr int kTitleGap = 5;

protected:
    FrameContainer(const StringOrResource& title, bool tabStop);

private:
    bool titleAtBottom() const { return mTitle->getAlignment().cy == AlignBottom; }
    // How far the title reaches beyond the border on its side: 0 when the border is as tall.
    int titleExcess() const;

    OwnedPtr<Label> mTitle;
};

}  // namespace Orvanta
