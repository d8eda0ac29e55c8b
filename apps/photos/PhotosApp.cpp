#include "apps/photos/PhotosApp.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <thread>

#include "VideoStock.h"
#include "apps/photos/Commands.h"
#include "apps/photos/DeviceImport.h"
#include "apps/photos/ImportDialog.h"
#include "apps/photos/PrintPreviewDialog.h"
#include "orvanta/assets/AssetIterator.h"
#include "orvanta/assets/CatalogueLocation.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/codecs/OrvantaIU.h"
#include "orvanta/desktop/Desktop.h"
#include "orvanta/editing/BWOp.h"
#include "orvanta/editing/ColorizeOp.h"
#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/PicFixOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/SepiaOp.h"
#include "orvanta/foundation/FilePath.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/Cursor.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/platform/ResourceModule.h"
#include "orvanta/platform/Trash.h"
#include "orvanta/printing/PrintDialog.h"
#include "orvanta/printing/PrintSpooler.h"
#include "orvanta/toolkit/MessageDialog.h"
#include "orvanta/views/MaskingPlugin.h"
#include "orvanta/views/RedeyePlugin.h"

using namespace Orvanta;

namespace OrvantaPhotos {

namespace {

// The string resource naming the preference key.
constexpr int kPrefsKeyId = 1;
constexpr CSize kDefaultSize(1280, 800);
constexpr double kZoomStep = 1.5;
constexpr double kMostZoom = 16.0;

const char16_t* const kPrefWidth = u"WindowWidth";
const char16_t* const kPrefHeight = u"WindowHeight";
const char16_t* const kPrefView = u"LastView";
const char16_t* const kPrefPhoto = u"LastPhoto";
const char16_t* const kPrefSort = u"Sort";

bool held(int virtualKey) {
    return Platform::getKeyState(virtualKey) < 0;
}

}  // namespace

// The top-level window's root: closing and a later instance's message reach the application.
class PhotosApp::MainWindow : public Container {
public:
    MainWindow(HWND window, PhotosApp* app) : Container(window), mApp(app) {}

    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam, bool* handled) override {
        if (message == WM_CLOSE) {
            mApp->onClose();
            if (handled) *handled = true;
            return 0;
        }
        if (message == WM_COPYDATA) {
            CString text;
            if (SingleInstance::crackIncomingMessage(reinterpret_cast<const COPYDATASTRUCT*>(lParam), text))
                mApp->onOtherInstance(text);
            if (handled) *handled = true;
            return 1;
        }
        return Container::handleMessage(message, wParam, lParam, handled);
    }

private:
    PhotosApp* mApp;
};

PhotosApp::PhotosApp(Options options) : mOptions(std::move(options)) {}

PhotosApp::~PhotosApp() {
    mImport.reset();
    mScript.reset();
    mSession.close();
    if (mRoot) mRoot->removeAll();
    mGrid.reset();
    mPicture.reset();
    mRoot = nullptr;
    if (mWindow) mWindow->destroy();
    orvantaIUDeInit();
}

int PhotosApp::run() {
    if (!start()) return mStatus;
    MSG msg;
    while (!mQuit && Platform::getMessage(&msg)) {
        if (handleShortcut(msg)) continue;
        if (!processMessage(&msg, mRoot.get())) Platform::dispatchMessage(&msg);
    }
    remember();
    return mStatus;
}

bool PhotosApp::start() {
    Platform::ResourceModule::current()->addString(kPrefsKeyId, u"Software\\Orvanta\\Photos");
    Prefs::setRegistryKey(kPrefsKeyId);
    // A scripted run is private: it neither hands over to nor waits for the user's own window.
    if (mOptions.script.empty()) {
        mInstance =
            std::make_unique<SingleInstance>(u"OrvantaPhotos", u"OrvantaPhotosWindow", u"OrvantaPhotosOpen");
        if (!mInstance->isFirstInstance()) {
            // The running copy has a working folder of its own: a relative path would mean another place
            // there.
            const std::string folder = mOptions.importPath.empty()
                                           ? std::string()
                                           : std::filesystem::absolute(mOptions.importPath).string();
            mInstance->sendToFirstInstance(CString::fromUtf8(folder));
            return false;
        }
    }
    // The library and the JPEG, TIFF and BMP codecs.
    orvantaIUInit();
    OrvantaTool::registerVideoCodec();

    CSize size = kDefaultSize;
    if (mOptions.size.cx > 0 && mOptions.size.cy > 0)
        size = mOptions.size;
    else if (mPrefs.isPref(kPrefWidth))
        size =
            CSize(static_cast<int>(mPrefs.getInt(kPrefWidth)), static_cast<int>(mPrefs.getInt(kPrefHeight)));
    size.cx = std::clamp(size.cx, 640, 8192);
    size.cy = std::clamp(size.cy, 480, 8192);
    mWindow = Platform::Window::create(nullptr, CRect(CPoint(40, 40), size), WS_OVERLAPPEDWINDOW, nullptr);
    mWindow->setText(u"Orvanta Photos");
    mRoot = new MainWindow(mWindow, this);
    mWindow->show(true);
    Platform::Window::setActiveWindow(mWindow);
    if (mInstance) mInstance->listen(mWindow);

    if (!mLibrary.open(mOptions.catalogue)) {
        tell(mLibrary.lastError());
        mStatus = 1;
        return false;
    }
    mOriginals = std::make_unique<OriginalsPolicy>(CatalogueLocation::getDataFolder() + "/originals");
    mOriginals->makePolicyCurrent();
    mGrid = std::make_unique<GridScreen>(mLibrary.thumbnails(), this);
    mPicture = std::make_unique<PictureScreen>(this);
    const unsigned long sort = mPrefs.getInt(kPrefSort);
    mGrid->sortChoice()->setCurSel(sort <= PhotoLibrary::kByName ? static_cast<int>(sort) : 0);
    changeView();
    showGrid();

    if (mPrefs.getInt(kPrefView) == 1) {
        const UniqueID last = UniqueID(mPrefs.getString(kPrefPhoto));
        const int index = mLibrary.view()->getIndex(last);
        if (index >= 0) openIndex(index);
    }
    if (!mOptions.importPath.empty()) importFolder(CString::fromUtf8(mOptions.importPath));
    if (!mOptions.script.empty()) {
        InputScript::Host host{mWindow, [this] { return mImport && mImport->isRunning(); },
                               [this](double x, double y) { return picturePoint(x, y); },
                               [this](int status) {
                                   mStatus = status;
                                   mQuit = true;
                                   Platform::postQuitMessage(status);
                               }};
        mScript = std::make_unique<InputScript>(host, mOptions.shots);
        if (!mScript->load(mOptions.script)) {
            std::fprintf(stderr, "orvanta-photos: cannot read the script %s\n", mOptions.script.c_str());
            mStatus = 2;
            return false;
        }
        mScript->start();
    }
    return true;
}

void PhotosApp::pump() {
    MSG msg;
    while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) {
        if (msg.message == WM_QUIT) {
            mQuit = true;
            if (mImport) mImport->stop();
            return;
        }
        if (handleShortcut(msg)) continue;
        if (!processMessage(&msg, mRoot.get())) Platform::dispatchMessage(&msg);
    }
}

void PhotosApp::onClose() {
    if (mImport) mImport->stop();
    if (mPicture->view()->getImage() && mSession.isEditable() && mSession.image()->isEdited() &&
        ask("Save the changes to " + mSession.fileName() + " before closing?")) {
        std::string message;
        if (!mSession.save(&message)) tell(message);
    }
    mQuit = true;
    Platform::postQuitMessage(mStatus);
}

void PhotosApp::onOtherInstance(const CString& text) {
    Platform::Window::setActiveWindow(mWindow);
    if (!text.isEmpty()) importFolder(text);
}

void PhotosApp::remember() {
    if (!mWindow || !mGrid) return;
    const CRect rect = mWindow->getRect();
    mPrefs.setInt(kPrefWidth, static_cast<unsigned long>(rect.width()));
    mPrefs.setInt(kPrefHeight, static_cast<unsigned long>(rect.height()));
    const bool picture = mSession.asset() != nullptr;
    mPrefs.setInt(kPrefView, picture ? 1 : 0);
    if (picture) mPrefs.setString(kPrefPhoto, mSession.asset()->getID().asString());
    mPrefs.setInt(kPrefSort, static_cast<unsigned long>(std::max(mGrid->sortChoice()->getCurSel(), 0)));
}

// Messages.

void PhotosApp::tell(const std::string& text) {
    std::fprintf(stderr, "orvanta-photos: %s\n", text.c_str());
    OwnedPtr<MessageDialog> dialog = MessageDialog::create(u"Orvanta Photos", CString::fromUtf8(text), false);
    if (mScript) Dialog::startForcedModeless(IDOK);
    dialog->showModal(0, 0, CString(u"Orvanta Photos"), mWindow);
    if (mScript) Dialog::endForcedModeless();
    refocus();
}

bool PhotosApp::ask(const std::string& text) {
    OwnedPtr<MessageDialog> dialog = MessageDialog::create(u"Orvanta Photos", CString::fromUtf8(text), true);
    if (mScript) {
        std::fprintf(stderr, "orvanta-photos: %s (answered yes)\n", text.c_str());
        Dialog::startForcedModeless(IDOK);
    }
    const int answer = dialog->showModal(0, 0, CString(u"Orvanta Photos"), mWindow);
    if (mScript) Dialog::endForcedModeless();
    refocus();
    return answer == IDOK;
}

void PhotosApp::refocus() {
    Platform::Window::setActiveWindow(mWindow);
    if (mSession.asset())
        mPicture->view()->setFocus();
    else if (mGrid)
        mGrid->grid()->setFocus();
}

// The grid.

void PhotosApp::showGrid() {
    mRoot->removeAll();
    mRoot->add(mGrid->root(), true);
    mRoot->layout();
    mGrid->grid()->setFocus();
    mRoot->invalidate(true, nullptr, true);
}

void PhotosApp::changeView() {
    const CString filter = mGrid->filter()->getText();
    const auto sort = static_cast<PhotoLibrary::Sort>(std::max(mGrid->sortChoice()->getCurSel(), 0));
    mGrid->grid()->setList(mLibrary.makeView(sort, filter));
    const int count = mLibrary.view()->getCount();
    mGrid->setStatus(
        CString::fromUtf8(std::to_string(count) + (count == 1 ? " photo" : " photos") +
                          (filter.isEmpty() ? "" : " whose name holds \"" + filter.toUtf8() + "\"")));
}

void PhotosApp::askImport() {
    CString start = SpecialFolder::getFolder(SpecialFolder::kMyPictures);
    OwnedPtr<ImportDialog> dialog = ImportDialog::create(start);
    if (dialog->showModal(0, 0, CString(u"Import a folder"), mWindow) == IDOK)
        importFolder(dialog->getFolder());
}

// A camera, scanner, card or CD, through the import wizard; the copies join the catalogue as they land.
void PhotosApp::importFromDevice() {
    if (mImport && mImport->isRunning()) {
        tell("An import is already running; wait for it to finish.");
        return;
    }
    const DeviceImport::Outcome outcome = DeviceImport::run(mWindow, mLibrary.catalogue(), mOptions.cameras);
    if (!outcome.status.empty()) mGrid->setStatus(CString::fromUtf8(outcome.status));
    if (!outcome.message.empty())
        tell(outcome.message);
    else
        refocus();
}

void PhotosApp::importFolder(const CString& folder) {
    if (mImport && mImport->isRunning()) {
        tell("An import is already running; wait for it to finish.");
        return;
    }
    FolderImport::Callbacks callbacks;
    callbacks.pump = [this] { pump(); };
    callbacks.onProgress = [this](int done, int total) {
        mGrid->setProgress(done, total);
        mGrid->setStatus(
            CString::fromUtf8("Making thumbnails: " + std::to_string(done) + " of " + std::to_string(total)));
    };
    callbacks.onFinished = [this](int added, int skipped) {
        mGrid->setProgress(0, 0);
        mGrid->setStatus(CString::fromUtf8(std::to_string(added) + " added, " + std::to_string(skipped) +
                                           " skipped; " + std::to_string(mLibrary.view()->getCount()) +
                                           " photos"));
        mGrid->grid()->invalidate(false);
    };
    mImport = std::make_unique<FolderImport>(mLibrary.catalogue(), mLibrary.thumbnails(), callbacks);
    mGrid->setStatus(u"Looking for photos in " + folder);
    if (!mImport->run(folder)) tell("The folder " + folder.toUtf8() + " cannot be read.");
}

// The photo open, else the grid's selection, else its current cell: a list of the program's own.
MemAssetList* PhotosApp::photosToPrint() {
    MemAssetList* photos = MemAssetList::create();
    if (Asset* open = mSession.asset()) {
        photos->addAsset(Asset::create(open->getProperties()->clone()), false);
        return photos;
    }
    ThumbnailControl* grid = mGrid->grid();
    OwnedPtr<AssetIterator> selected =
        grid->getSelection() ? grid->getSelection()->createIterator() : nullptr;
    for (bool more = selected && selected->first(); more; more = selected->next())
        photos->addAsset(Asset::create(selected->current()->getProperties()->clone()), false);
    if (photos->getCount() == 0)
        if (Asset* current = grid->getAsset(grid->getCurrent()))
            photos->addAsset(Asset::create(current->getProperties()->clone()), false);
    return photos;
}

// The printer and paper asked first, then the pages shown as they will print; the job goes to the
// print system on the spooler's thread while the screen goes on being drawn.
void PhotosApp::printPhotos() {
    OwnedPtr<MemAssetList> photos = photosToPrint();
    if (photos->getCount() == 0) return;
    OwnedPtr<PrintDialog> where = PrintDialog::create();
    if (where->showModal(0, 0, CString(u"Print"), mWindow) != IDOK) return refocus();
    OwnedPtr<PrintPreviewDialog> preview = PrintPreviewDialog::create(photos, where->getPrinter());
    if (preview->showModal(0, 0, CString(u"Print preview"), mWindow) != IDOK) return refocus();
    OwnedPtr<PrintSpooler> spooler = PrintSpooler::create(nullptr);
    spooler->print(preview->getJob(), where->getPrinter(), 0, 0);
    while (!spooler->isFinished() && !mQuit) {
        pump();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    spooler->wait();
    const std::string printer = where->getPrinter()->getName().toUtf8();
    if (!spooler->wasPrinted())
        return tell("The photos were not printed on " + printer + ": " + spooler->getError() + ".");
    std::fprintf(stderr, "orvanta-photos: sent to %s as job %d\n", printer.c_str(), spooler->getJobId());
    if (!mSession.asset()) mGrid->setStatus(CString::fromUtf8("Sent to " + printer + "."));
    refocus();
}

void PhotosApp::deleteSelected() {
    ThumbnailControl* grid = mGrid->grid();
    OwnedPtr<Asset> asset = grid->getAsset(grid->getCurrent());
    if (!asset || !asset->getAssetFile()) return;
    const std::string path = asset->getAssetFile()->getPath().toUtf8();
    if (!ask("Move " + path + " to the trash?")) return;
    if (!Platform::moveToTrash(path) && FilePath::exists(CString::fromUtf8(path), false)) {
        tell("The photo " + path + " cannot be moved to the trash; it is left where it is.");
        return;
    }
    mLibrary.catalogue()->removeAsset(asset, true);
}

// The picture view.

void PhotosApp::openIndex(int index) {
    AssetList* view = mLibrary.view();
    if (index < 0 || index >= view->getCount()) return;
    OwnedPtr<Asset> asset = view->getAsset(index);
    std::string message;
    const CSize screen = mWindow->getRect().size();
    if (!mSession.open(asset, screen, &message)) {
        mSession.close();
        tell(message);
        return;
    }
    mSessionIndex = index;
    showPicture();
}

void PhotosApp::showPicture() {
    PictureScreen& screen = *mPicture;
    screen.view()->setPlugin(nullptr);
    screen.setPicture(mSession.image(), CString::fromUtf8(mSession.fileName()));
    if (mRoot->getChildAt(0) != screen.root()) {
        mRoot->removeAll();
        mRoot->add(screen.root(), true);
        mRoot->layout();
    }
    screen.view()->setFocus();
    mRoot->invalidate(true, nullptr, true);
    // The fitted picture shows first; then the photo is read whole for editing.
    mRoot->update();
    std::string message;
    if (mSession.makeEditable(&message))
        screen.view()->setImage(mSession.image());
    else
        tell(message);
}

bool PhotosApp::editable() {
    if (mSession.isEditable()) return true;
    std::string message;
    if (!mSession.makeEditable(&message)) {
        tell(message);
        return false;
    }
    mPicture->view()->setImage(mSession.image());
    return true;
}

void PhotosApp::edit(EditingOp* op) {
    OwnedPtr<EditingOp> hold = op;
    if (editable()) mSession.apply(op);
}

void PhotosApp::leavePicture() {
    if (mSession.isEditable() && mSession.image()->isEdited() &&
        ask("Save the changes to " + mSession.fileName() + "?")) {
        std::string message;
        if (!mSession.save(&message)) tell(message);
    }
    mPicture->view()->setPlugin(nullptr);
    mPicture->view()->setImage(nullptr);
    const int index = mSessionIndex;
    mSession.close();
    showGrid();
    ThumbnailControl* grid = mGrid->grid();
    grid->moveTo(grid->cellFromIndex(index), false);
}

void PhotosApp::startCrop(int a, int b) {
    if (!editable()) return;
    ImageControl* view = mPicture->view();
    view->setZoom(1.0, true);
    DibMask mask(a, b, mSession.image()->getSize());
    mask.initialize();
    view->setPlugin(MaskingPlugin::create(mask, 24, 8, false));
}

CPoint PhotosApp::picturePoint(double x, double y) {
    ImageControl* view = mPicture->view();
    const CRect whole = view->getVisibleRect().mapFrom(view->getDisplayRect());
    const CRect screen = view->getWindowRect();
    return mWindow->screenToClient(CPoint(screen.left + whole.left + static_cast<int>(x * whole.width()),
                                          screen.top + whole.top + static_cast<int>(y * whole.height())));
}

void PhotosApp::pictureCommand(int command) {
    ImageControl* view = mPicture->view();
    Image* image = mSession.image();
    switch (command) {
        case kBack:
            leavePicture();
            return;
        case kPrevious:
        case kNext:
        case kFirst:
        case kLast: {
            const int count = mLibrary.view()->getCount();
            const int target = command == kFirst  ? 0
                               : command == kLast ? count - 1
                                                  : mSessionIndex + (command == kNext ? 1 : -1);
            if (target < 0 || target >= count || target == mSessionIndex) return;
            if (mSession.isEditable() && image->isEdited() &&
                ask("Save the changes to " + mSession.fileName() + "?")) {
                std::string message;
                if (!mSession.save(&message)) tell(message);
            }
            openIndex(target);
            return;
        }
        case kZoomIn:
            view->setZoom(std::min(view->getZoom() * kZoomStep, kMostZoom), true);
            return;
        case kZoomOut:
            view->setZoom(std::max(view->getZoom() / kZoomStep, 1.0), true);
            return;
        case kFit:
            view->setZoom(1.0, true);
            view->setCenter(0.5, 0.5);
            return;
        case kRotateLeft:
        case kRotateRight:
            edit(RotateOp::create(command == kRotateLeft ? 270 : 90));
            return;
        case kMirror:
            edit(MirrorOp::create(false));
            return;
        case kCropFree:
            startCrop(0, 0);
            return;
        case kCrop4x3:
            startCrop(3, 4);
            return;
        case kCropSquare:
            startCrop(1, 1);
            return;
        case kCropApply:
            if (auto* frame = dynamic_cast<MaskingPlugin*>(view->getPlugin())) {
                DibMask mask(0, 0, image->getSize());
                frame->getMask(mask);
                view->setPlugin(nullptr);
                edit(CropOp::create(mask));
            }
            return;
        case kRedeye:
            if (dynamic_cast<RedeyePlugin*>(view->getPlugin())) {
                view->setPlugin(nullptr);
            } else if (editable()) {
                const CSize size = mSession.image()->getSize();
                view->setPlugin(RedeyePlugin::create(
                    std::max(4, static_cast<int>(std::min(size.cx, size.cy)) / 12), IDC_CROSS));
            }
            return;
        case kFix:
            edit(PicFixOp::create());
            return;
        case kColorize:
            edit(ColorizeOp::create(0.6, 0.5, 0.4, 8));
            return;
        case kBlackWhite:
            edit(BWOp::create(0.5, 0.5, 0.5));
            return;
        case kSepia:
            edit(SepiaOp::create(0.65, 0.5, 0.35));
            return;
        case kUndo:
            if (mSession.isEditable()) image->undo(true);
            return;
        case kRedo:
            if (mSession.isEditable()) image->redo();
            return;
        case kSave: {
            std::string message;
            if (!mSession.save(&message)) tell(message);
            mGrid->grid()->invalidate(false);
            return;
        }
        case kRevert:
            mSession.revert();
            return;
        case kWallpaper: {
            CatalogueLocation::makeDataFolder();
            const std::string bmp = CatalogueLocation::getDataFolder() + "/wallpaper.bmp";
            if (!Desktop::setWallpaper(mSession.asset()->getAssetFile()->getPath(), Desktop::kFill,
                                       CString::fromUtf8(bmp)))
                tell("This desktop does not take its wallpaper from Orvanta Photos.");
            return;
        }
        default:
            return;
    }
}

void PhotosApp::onCommand(Control* source, int command) {
    if (source == mGrid->grid()) {
        if (command == ThumbnailControl::kCellActivated)
            openIndex(mGrid->grid()->cellIndex(mGrid->grid()->getCurrent()));
        return;
    }
    if (source == mPicture->view()) return;
    if (command == kImport) {
        askImport();
        return;
    }
    if (command == kImportDevice) {
        importFromDevice();
        return;
    }
    if (command == kPrint) {
        printPhotos();
        return;
    }
    if (source == mGrid->filter()) {
        if (command == CommandListener::kTextChanged) changeView();
        return;
    }
    if (source == mGrid->sortChoice()) {
        if (command == CommandListener::kSelectionChanged) changeView();
        return;
    }
    if (command >= kBack && mSession.asset()) pictureCommand(command);
}

// The keys users expect, before the focused control sees them.
bool PhotosApp::handleShortcut(const MSG& msg) {
    if (msg.message != WM_KEYDOWN || !mRoot) return false;
    // Keys belong to the window they were typed in: a dialog's are its own.
    if (msg.hwnd != mWindow && !mRoot->containsWindow(msg.hwnd)) return false;
    const int key = static_cast<int>(msg.wParam);
    const bool control = held(VK_CONTROL);
    const bool inPicture = mSession.asset() != nullptr;
    if (control && key == 'Q') {
        onClose();
        return true;
    }
    if (control && key == 'P') {
        printPhotos();
        return true;
    }
    if (control && key == 'I' && !inPicture) {
        importFromDevice();
        return true;
    }
    if (!inPicture) {
        if (Platform::Window::getFocus() != mGrid->grid()->getHWND()) return false;
        if (key == VK_DELETE) {
            deleteSelected();
            return true;
        }
        return false;
    }
    const bool plugin = mPicture->view()->getPlugin() != nullptr;
    int command = 0;
    if (control && key == 'Z')
        command = kUndo;
    else if (control && key == 'Y')
        command = kRedo;
    else if (control && key == 'S')
        command = kSave;
    else if (control)
        return false;
    else if (key == VK_ESCAPE) {
        if (plugin) {
            mPicture->view()->setPlugin(nullptr);
            return true;
        }
        command = kBack;
    } else if (key == VK_RETURN && plugin)
        command = kCropApply;
    else if (key == VK_LEFT || key == VK_PRIOR)
        command = kPrevious;
    else if (key == VK_RIGHT || key == VK_NEXT)
        command = kNext;
    else if (key == VK_HOME)
        command = kFirst;
    else if (key == VK_END)
        command = kLast;
    else if (key == VK_ADD || key == VK_OEM_PLUS)
        command = kZoomIn;
    else if (key == VK_SUBTRACT || key == VK_OEM_MINUS)
        command = kZoomOut;
    else if (key == 'F')
        command = kFit;
    else if (key == 'R')
        command = held(VK_SHIFT) ? kRotateLeft : kRotateRight;
    else if (key == 'M')
        command = kMirror;
    else if (key == 'C')
        command = kCropFree;
    else if (key == 'E')
        command = kRedeye;
    else
        return false;
    pictureCommand(command);
    return true;
}

}  // namespace OrvantaPhotos
