#pragma once
// GroupFrame: the frame that groups related controls of a dialog under a caption, as the platform's
// group box: a one-pixel line round the group, broken by the caption on its top edge, and room inside
// the line before the children start.
//
// Contract: a FrameContainer with the group box's look: its children are laid out inside the frame,
// kPadding pixels in from the line, and its minimum size is what they, the caption and the padding
// need (getContentSize), so that a fit row or column of a grid makes room for the group. The caption takes a
// mnemonic ('&'): Alt and that letter give the focus to the group's first control. A disabled group greys its
// caption and disables the controls in it; enabling it again enables them.

#include "orvanta/toolkit/FrameContainer.h"

namespace Orvanta {

class GroupFrame : public FrameContainer {
public:
    static GroupFrame* create(const StringOrResource& caption, bool tabStop = true);

    CRect getContentRect() const override;
    CSize getContentSize() const override;
    void layout() override;
    void add(Control* child, bool tabStop = false) override;
    void setEnabled(bool enabled) override;

    static constexpr int kPadding = 8;

protected:
    GroupFrame(const StringOrResource& caption, bool tabStop);
};

}  // namespace Orvanta
