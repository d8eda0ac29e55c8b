#pragma once
// RolloverLabelButton: a button that looks like a line of text until the pointer is over it, as the
// actions beside a photograph ("Rotate", "Print this picture") do: link-coloured text, underlined
// while the pointer is over it, pressed down a pixel while held.
//
// Contract: a TextButton in behaviour (click, Space and Enter, capture while pressed, the mnemonic of
// its '&', the command of its identifier) with no face. The pointer over it is the hand. Its minimum
// size fits its text with kPadding round it. With the focus it has the focus rectangle; disabled, it
// is grey and never underlined.

#include "orvanta/platform/Canvas.h"
#include "orvanta/toolkit/TextButton.h"

namespace Orvanta {

class RolloverLabelButton : public TextButton {
public:
    static RolloverLabelButton* create(int id, const CString& text, CommandListener* listener = nullptr);

    void paintBackground(HDC dc) override;
    void paintContent(HDC dc) override;

    static constexpr int kPadding = 3;

protected:
    RolloverLabelButton(int id, const CString& text);

    void refit() override;
    // The DT_ format the caption is drawn with (DT_NOPREFIX shows a '&' as it is).
    virtual UINT captionFormat() const { return DT_LEFT | DT_VCENTER; }
    // The caption's box, the picture of a derived button left out.
    virtual CRect captionRect() const;
};

}  // namespace Orvanta
