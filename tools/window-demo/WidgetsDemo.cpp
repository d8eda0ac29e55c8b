#include "tools/window-demo/WidgetsDemo.h"

#include <cstdio>
#include <string>

#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/foundation/Resource.h"
#include "orvanta/platform/ResourceModule.h"
#include "orvanta/toolkit/CounterControl.h"
#include "orvanta/toolkit/DatePickerCtrl.h"
#include "orvanta/toolkit/Dialog.h"
#include "orvanta/toolkit/DialogWindow.h"
#include "orvanta/toolkit/DropDown.h"
#include "orvanta/toolkit/Edit.h"
#include "orvanta/toolkit/EditableLabel.h"
#include "orvanta/toolkit/FolderTree.h"
#include "orvanta/toolkit/FontCache.h"
#include "orvanta/toolkit/GridContainer.h"
#include "orvanta/toolkit/GroupFrame.h"
#include "orvanta/toolkit/Label.h"
#include "orvanta/toolkit/ListBox.h"
#include "orvanta/toolkit/ListView.h"
#include "orvanta/toolkit/PackedContainer.h"
#include "orvanta/toolkit/RadioButtonGroup.h"
#include "orvanta/toolkit/RolloverToolbarLabel.h"
#include "orvanta/toolkit/TextButton.h"
#include "orvanta/toolkit/WebPageCtrl.h"
#include "orvanta/toolkit/WindowsProgressBar.h"
#include "tools/window-demo/DemoSupport.h"

using namespace Orvanta;

namespace OrvantaDemo {

namespace {

constexpr int kPrinterPicture = 1;

// A 24 x 24 picture of a printer, drawn in code: a grey body, white paper, a dark slot.
void addPrinterPicture(Platform::ResourceModule& module) {
    const int size = 24;
    const int stride = size * 3;
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = size;
    header.biHeight = -size;
    header.biPlanes = 1;
    header.biBitCount = 24;
    std::string dib(reinterpret_cast<const char*>(&header), sizeof header);
    dib.resize(sizeof header + static_cast<std::size_t>(stride) * size, '\0');
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            COLORREF c = RGB(255, 0, 255);  // see-through
            if (y >= 2 && y < 10 && x >= 6 && x < 18) c = RGB(250, 250, 250);
            if (y >= 9 && y < 19 && x >= 2 && x < 22) c = RGB(90, 100, 120);
            if (y >= 15 && y < 17 && x >= 5 && x < 19) c = RGB(30, 30, 40);
            if (y >= 17 && y < 22 && x >= 6 && x < 18) c = RGB(250, 250, 250);
            char* p = &dib[sizeof header + static_cast<std::size_t>(y) * stride + x * 3];
            p[0] = static_cast<char>(GetBValue(c));
            p[1] = static_cast<char>(GetGValue(c));
            p[2] = static_cast<char>(GetRValue(c));
        }
    module.addBitmap(kPrinterPicture, dib.data(), dib.size());
}

Label* caption(const char16_t* text) {
    Label* label = Label::create(text);
    label->setAlignment(Control::AlignLeft, Control::AlignCenter);
    return label;
}

template <typename T>
T* field(T* control) {
    control->setAlignment(Control::AlignFill, Control::AlignCenter);
    return control;
}

// Roots of the demo's folder tree: a folder every Debian machine has, so the picture is the same.
struct DemoRoots : FolderTreeRoots {
    std::vector<Root> getRoots() const override {
        return {{u"Backgrounds", u"/usr/share/backgrounds"}, {u"Share", u"/usr/share"}};
    }
};

class WidgetsDialog : public Dialog {
public:
    static WidgetsDialog* create(Platform::ResourceModule* pictures) { return new WidgetsDialog(pictures); }
    CSize getInitialSize() override { return CSize(900, 620); }
    CString getInitialTitle() override { return CString(u"Print photographs — Orvanta widgets"); }

    void populateDialog() override {
        GridContainer* body = GridContainer::create(2, 2);
        body->setColSpec(0, 0.5);
        body->setRowSpec(1, GridContainer::kFit);
        body->setMargin(12, Style::kBorders);
        body->setAlignment(Control::AlignFill, Control::AlignFill);
        body->add(leftSide(), 0, 0, true);
        body->add(rightSide(), 0, 1, true);
        body->add(buttons(), 1, 1, true);
        getContainer()->add(body, true);
    }

    Edit* title = nullptr;
    ListView* photos = nullptr;
    DropDown* paper = nullptr;
    DatePickerCtrl* taken = nullptr;
    FolderTree* folders = nullptr;

private:
    explicit WidgetsDialog(Platform::ResourceModule* pictures) : mPictures(*pictures) {}

    Container* leftSide() {
        GridContainer* grid = GridContainer::create(11, 2);
        grid->setColSpec(0, GridContainer::kFit);
        for (int row = 0; row < 11; ++row) grid->setRowSpec(row, GridContainer::kFit);
        grid->setRowSpec(10, GridContainer::kFlexible);
        grid->setAlignment(Control::AlignFill, Control::AlignFill);
        int row = 0;
        // A fit row is as tall as its tallest child with its margins: the margins space the lines.
        auto line = [&](const char16_t* text, Control* control) {
            Label* label = caption(text);
            label->setMargin(8, Style::Right);
            grid->add(label, row, 0);
            control->setMargin(3, Style::Top | Style::Bottom);
            grid->add(control, row++, 1, true);
        };
        line(u"&Album:", field(EditableLabel::create(10, u"Île de Ré, été 2026 & friends")));
        title = field(Edit::create(11, u"Holiday — صور العطلة"));
        line(u"&Title:", title);
        line(u"Pass&word:", field(Edit::create(12, u"s3cr€t", Edit::Password)));
        paper = field(DropDown::create(13));
        for (const char16_t* size : {u"10 × 15 cm", u"13 × 18 cm", u"A4", u"A5", u"Letter", u"Legal"})
            paper->addString(size);
        paper->setCurSel(2);
        line(u"Paper &size:", paper);
        CounterControl* copies = CounterControl::create(14, 2, 1, 99);
        copies->setAlignment(Control::AlignLeft, Control::AlignCenter);
        line(u"&Copies:", copies);
        taken = DatePickerCtrl::create(15);
        SYSTEMTIME day{};
        day.wYear = 2026;
        day.wMonth = 7;
        day.wDay = 14;
        taken->setDate(day);
        taken->setAlignment(Control::AlignLeft, Control::AlignCenter);
        line(u"&Date taken:", taken);

        GroupFrame* layout = GroupFrame::create(u"&Layout");
        layout->setAlignment(Control::AlignFill, Control::AlignFill);
        RadioButtonGroup* choices = RadioButtonGroup::create(
            16, {u"&One photograph a page", u"Contact s&heet", u"&Fit to the paper"});
        choices->setSelection(1);
        choices->setAlignment(Control::AlignLeft, Control::AlignTop);
        layout->add(choices, true);
        layout->setMargin(6, Style::Top | Style::Bottom);
        grid->add(layout, row++, 1, true);

        WindowsProgressBar* progress = WindowsProgressBar::create();
        progress->setPos(60);
        progress->setAlignment(Control::AlignFill, Control::AlignCenter);
        progress->setMargin(3, Style::Top | Style::Bottom);
        grid->add(caption(u"Printing:"), row, 0);
        grid->add(progress, row++, 1);
        WebPageCtrl* help = WebPageCtrl::create(17, u"https://www.debian.org/doc/");
        help->setAlignment(Control::AlignLeft, Control::AlignCenter);
        grid->add(caption(u"Help:"), row, 0);
        grid->add(help, row++, 1, true);
        PackedContainer* tools = PackedContainer::create(true);
        tools->setPackDirection(Control::AlignLeft);
        tools->setAlignment(Control::AlignLeft, Control::AlignCenter);
        RolloverToolbarLabel* print = RolloverToolbarLabel::create(
            18, u"&Print", Resource(kPrinterPicture, &mPictures), 1, RGB(255, 0, 255));
        tools->add(print, true);
        RolloverLabelButton* rotate = RolloverLabelButton::create(19, u"&Rotate left");
        rotate->setAlignment(Control::AlignLeft, Control::AlignCenter);
        tools->add(rotate, true);
        TextButton* remove = TextButton::create(20, u"Remo&ve");
        remove->setEnabled(false);
        remove->setAlignment(Control::AlignLeft, Control::AlignCenter);
        rotate->setMargin(8, Style::Right);
        tools->add(remove, true);
        grid->add(caption(u"Tools:"), row, 0);
        grid->add(tools, row++, 1, true);
        return grid;
    }

    Container* rightSide() {
        GridContainer* grid = GridContainer::create(2, 1);
        grid->setRowSpec(0, 0.45);
        grid->setAlignment(Control::AlignFill, Control::AlignFill);
        GridContainer* top = GridContainer::create(1, 2);
        top->setColSpec(0, 0.4);
        top->setAlignment(Control::AlignFill, Control::AlignFill);
        ListBox* albums = ListBox::create(30);
        for (const char16_t* album : {u"Été 2026", u"Famille", u"Île de Ré", u"Noël", u"Ski — Alpes", u"Zoo"})
            albums->addString(album);
        albums->setCurSel(2);
        albums->setAlignment(Control::AlignFill, Control::AlignFill);
        albums->setMargin(4, Style::kBorders);
        top->add(albums, 0, 0, true);
        folders = FolderTree::create(31, new DemoRoots());
        folders->setAlignment(Control::AlignFill, Control::AlignFill);
        folders->setMargin(4, Style::kBorders);
        top->add(folders, 0, 1, true);
        grid->add(top, 0, 0, true);
        photos = ListView::create(32);
        photos->insertColumn(0, u"Name", 190);
        photos->insertColumn(1, u"Taken", 110);
        photos->insertColumn(2, u"Size", 80, DT_RIGHT, true);
        const char* names[] = {
            "Plage de la Conche.jpg", "Phare des Baleines.jpg", "Saint-Martin, le port.jpg",
            "Vélos au marché.jpg",    "Coucher de soleil.jpg",  "Marais salants.jpg",
            "Ars-en-Ré.jpg",          "Éléonore et Zoé.jpg",    "Les Portes, la dune.jpg"};
        int i = 0;
        for (const char* name : names) {
            const int item = photos->insertItem(-1, CString::fromUtf8(name));
            photos->setItemText(item, 1, CString::fromUtf8("2026-07-" + std::to_string(10 + i)));
            photos->setItemText(item, 2, CString::fromUtf8(std::to_string(1200 + (i * 731) % 3000) + " KB"));
            ++i;
        }
        photos->sortItems(0, true);
        photos->setAlignment(Control::AlignFill, Control::AlignFill);
        photos->setMargin(4, Style::kBorders);
        grid->add(photos, 1, 0, true);
        return grid;
    }

    Container* buttons() {
        PackedContainer* row = PackedContainer::create(true);
        row->setPackDirection(Control::AlignRight);
        row->setAlignment(Control::AlignRight, Control::AlignBottom);
        for (const auto& [id, text] : {std::pair{IDCANCEL, u"Cancel"}, std::pair{IDOK, u"&Print"}}) {
            TextButton* button = TextButton::create(id, text);
            button->setMinSize(std::max(button->getMinSize().cx, 90), button->getMinSize().cy);
            button->setMargin(6, Style::Left);
            row->add(button, true);
        }
        return row;
    }

    Platform::ResourceModule& mPictures;
};

void postKey(HWND window, int virtualKey) {
    Platform::Window::postMessage(window, WM_KEYDOWN, static_cast<WPARAM>(virtualKey), 1);
    Platform::Window::postMessage(window, WM_KEYUP, static_cast<WPARAM>(virtualKey), 1);
}

bool write(HWND window, const std::string& path, const char* what) {
    if (!writePng(window, path.c_str())) {
        std::fprintf(stderr, "orvanta-window-demo: cannot write %s\n", path.c_str());
        return false;
    }
    std::printf("%s written to %s\n", what, path.c_str());
    return true;
}

}  // namespace

int runWidgetsDemo(const char* directory) {
    init();
    Platform::ResourceModule pictures;
    addPrinterPicture(pictures);
    HWND owner = Platform::Window::create(nullptr, CRect(0, 0, 1000, 700), WS_OVERLAPPEDWINDOW, nullptr);
    OwnedPtr<Container> root = Container::create(owner);
    owner->show(true);
    OwnedPtr<WidgetsDialog> dialog = WidgetsDialog::create(&pictures);
    // No person is there to answer: the dialog comes up modeless and showModal answers at once.
    Dialog::startForcedModeless(IDOK);
    dialog->showModal(owner);
    const std::string dir(directory);
    int failures = 0;
    if (Container* window = dialog->getContainer()) {
        runUntilIdle(root);
        // A folder opened, a few photographs chosen, and the title being edited with a selection.
        dialog->folders->expand(0);
        dialog->photos->setSelected(2, true);
        dialog->photos->setSelected(3, true);
        dialog->photos->setFocusRow(3);
        dialog->title->setFocus();
        dialog->title->setSelection(10, 14);
        runUntilIdle(root);
        failures += !write(window->getHWND(), dir + "/widgets.png", "dialog of every widget");
        dialog->taken->setFocus();
        postKey(dialog->taken->getHWND(), VK_F4);
        runUntilIdle(root);
        if (dialog->taken->isOpen())
            failures += !write(dialog->taken->getPopup()->getHWND(), dir + "/widgets-calendar.png",
                               "date picker's calendar");
        else
            ++failures;
        dialog->paper->setFocus();
        postKey(dialog->paper->getHWND(), VK_F4);
        postKey(dialog->paper->getHWND(), VK_DOWN);
        runUntilIdle(root);
        if (dialog->paper->isOpen())
            failures +=
                !write(dialog->paper->getPopup()->getHWND(), dir + "/widgets-dropdown.png", "drop-down list");
        else
            ++failures;
        dialog->paper->close(false);
    } else {
        ++failures;
    }
    Dialog::endForcedModeless();
    dialog = nullptr;
    root = nullptr;
    owner->destroy();
    deinit();
    return failures;
}

}  // namespace OrvantaDemo
