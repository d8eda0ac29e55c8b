#pragma once
// PrintTemplateRenderer: draws a bare print design: the page outline and every slot as a styled
// empty box, for choosing a template; renderPreview makes a thumbnail of it.
//
// Contract: slots are drawn in the template's name order, moved by the origin (device pixels). A
// style per slot type is made with its defaults on first use: no fill (text slots grey), a black
// one-dot border, no text. draw() sets the origin; nothing else changes the renderer while drawing.

#include <map>

#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/printing/PrintDrawing.h"
#include "orvanta/printing/PrintTemplate.h"
#include "orvanta/toolkit/Font.h"

namespace Orvanta {

class PrintTemplateRenderer : public IOwned {
public:
    static PrintTemplateRenderer* create();

    virtual PrintTemplate* getTemplate() { return mTemplate; }
    virtual void setTemplate(PrintTemplate* printTemplate) { mTemplate = printTemplate; }
    virtual void setBackgroundColor(COLORREF color) { mBackground = color; }
    virtual COLORREF getBackgroundColor() { return mBackground; }
    virtual void setOutline(int width, COLORREF color);
    virtual void setSlotFillColor(PrintTemplateSlot::Type type, COLORREF color);
    virtual COLORREF getSlotFillColor(PrintTemplateSlot::Type type);
    virtual void setSlotBorder(PrintTemplateSlot::Type type, int width, COLORREF color);
    virtual int getSlotBorderWidth(PrintTemplateSlot::Type type);
    virtual COLORREF getSlotBorderColor(PrintTemplateSlot::Type type);
    virtual void setSlotText(PrintTemplateSlot::Type type, const CString& text);
    virtual void setSlotFont(PrintTemplateSlot::Type type, Font* font);
    // The bare design with its top left corner at (x, y).
    virtual void draw(HDC dc, int x, int y);
    // A cx x cy picture of the bare design fitted inside it (never enlarged), text boxes as solid
    // bars; null when no template is set.
    virtual DibSection* renderPreview(int cx, int cy);
    virtual CPoint getOrigin() { return mOrigin; }
    virtual void setOrigin(int x, int y) { mOrigin = CPoint(x, y); }
    virtual void drawSlotBox(HDC dc, const CString& slot, bool showFill, bool showText);
    // Paints the slot's rectangle solid in the background colour.
    virtual void clearSlot(HDC dc, const CString& slot);
    virtual void drawPageOutline(HDC dc);

protected:
    struct SlotStyle {
        CString text;
        OwnedPtr<Font> font;
        COLORREF fillColor = kNoColor;
        COLORREF borderColor = 0;
        int borderWidth = 1;
    };

    PrintTemplateRenderer();
    SlotStyle& styleOf(PrintTemplateSlot::Type type) { return mStyles[type]; }
    // The slot's rectangle on the device, moved by the origin; false for no such slot.
    bool getSlotDeviceRect(HDC dc, const CString& slot, CRect& rect);

    OwnedPtr<PrintTemplate> mTemplate;
    CPoint mOrigin;
    std::map<int, SlotStyle> mStyles;
    COLORREF mBackground = 0xFFFFFF;
    COLORREF mOutlineColor = 0;
    int mOutlineWidth = 1;
};

}  // namespace Orvanta
