#pragma once
// PrintTemplatePage: one filled-in instance of a PrintTemplate: for each slot, which asset stands
// there and how its picture is turned, zoomed and shifted, or the text of a text slot.
//
// Contract: slot state is found by slot name with the subscript semantics of a map for every access,
// reads too: it comes into being on first use and lives as long as the page. Offsets are kept in
// thousandths of an inch (the picture's top left corner from the slot's), and handed out in pixels
// of the device asked for, which is a parameter because one page serves the screen and the printer
// in turn. The working copy of a picture is decoded at no more than the screen can show at the
// slot's physical size, and fitted to fill its slot (zoom computed against the device of the call);
// the overhang is cut at drawing time. Nothing throws: a missing slot, template, asset or picture
// gives an empty answer or no action, and a file that cannot be decoded leaves its slot with an asset
// and no working copy, which counts as empty.

#include <map>

#include "orvanta/assets/Asset.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/editing/EditingOp.h"
#include "orvanta/foundation/IOwned.h"
#include "orvanta/foundation/Notifier.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/printing/PrintTemplate.h"

namespace Orvanta {

class PrintTemplatePage : public IOwned, public Notifier {
public:
    static PrintTemplatePage* create();

    virtual PrintTemplate* getTemplate() { return mTemplate; }
    // Contents survive by slot name; every picture is loaded and centred anew, then listeners hear 0.
    virtual void setTemplate(PrintTemplate* printTemplate);
    virtual Asset* getAsset(const CString& slot);
    // Places the asset (null empties the slot): rotation back to 0, the picture loaded, fitted and
    // centred against dc.
    virtual void setAsset(HDC dc, const CString& slot, Asset* asset);
    virtual Image* getImage(const CString& slot);
    virtual CPoint getOffset(HDC dc, const CString& slot);
    virtual void setOffset(HDC dc, const CString& slot, int x, int y);
    virtual double getZoom(const CString& slot);
    virtual void setZoom(const CString& slot, double zoom);
    virtual CString getText(const CString& slot);
    virtual void setText(const CString& slot, const CString& text);
    // A text slot's own name; any other slot's label; an empty string for no such slot.
    virtual CString getSlotLabel(const CString& slot);
    virtual bool isSlotEmpty(const CString& slot);
    // In pixels of dc; false, and rect untouched, for no such slot.
    virtual bool getSlotRect(HDC dc, const CString& slot, CRect& rect);
    virtual CRect getSlotRect(const CString& slot);
    // −1 for no such slot.
    virtual int getSlotType(const CString& slot);
    // Turns an image slot's working copy clockwise, refits and recentres it; the rotation adds up
    // modulo 360 (a negative total keeps its sign).
    virtual void rotateSlot(HDC dc, const CString& slot, int degrees);
    virtual int getRotation(const CString& slot);
    virtual bool isEffectApplied(const CString& slot);
    // The operation every photograph of the page goes through (null: none). Never stacked: a new or
    // cleared effect reloads pictures that already carry one.
    virtual void setEffect(EditingOp* effect);
    virtual EditingOp* getEffect() { return mEffect; }
    virtual CString getSlotAt(HDC dc, int x, int y);
    virtual void reloadSlot(const CString& slot);
    virtual void reloadAll();
    virtual void recentreAll();

private:
    struct SlotState {
        OwnedPtr<Asset> asset;
        int offsetX = 0;
        int offsetY = 0;
        double zoom = 1.0;
        OwnedPtr<Image> image;
        int rotation = 0;
        CString text;
        bool effectApplied = false;
    };

    PrintTemplatePage() = default;

    PrintTemplateSlot* slotOf(const CString& slot);
    void loadWorkingCopy(HDC dc, const CString& slot);
    void fit(HDC dc, const CString& slot);
    void centre(HDC dc, const CString& slot);

    OwnedPtr<PrintTemplate> mTemplate;
    std::map<CString, SlotState, SlotNameOrder> mStates;
    OwnedPtr<EditingOp> mEffect;
};

}  // namespace Orvanta
