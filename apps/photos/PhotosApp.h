#pragma once
// PhotosApp: Orvanta Photos itself: one window showing either the catalogue's grid or one photo, the
// loop that runs it, the keyboard shortcuts, and what is remembered between runs (window size, last
// view, the photo open, the sort).
//
// Contract: run answers the process's exit status. Every failure the user can meet (a file gone
// under the grid, a damaged file, a photo that does not decode, a save onto a full disk) is told in
// a message and the application goes on; nothing in it deletes a photo except Delete, which asks
// first and moves the file to the trash, and an edited photo is saved over its file only once its
// original is kept (OriginalsPolicy). With a script (InputScript) the application is driven
// without a person: messages are written to standard error and answered with their default.

#include <memory>
#include <string>
#include <vector>

#include "apps/photos/FolderImport.h"
#include "apps/photos/GridScreen.h"
#include "apps/photos/InputScript.h"
#include "apps/photos/OriginalsPolicy.h"
#include "apps/photos/PhotoLibrary.h"
#include "apps/photos/PictureScreen.h"
#include "apps/photos/PictureSession.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/desktop/Prefs.h"
#include "orvanta/desktop/SingleInstance.h"
#include "orvanta/toolkit/Container.h"

namespace OrvantaPhotos {

class PhotosApp : public Orvanta::CommandListener {
public:
    struct Options {
        std::string catalogue;             // empty: the user's default catalogue
        std::string script;                // a script of input to run, then quit
        std::string shots;                 // where the script's shots go
        std::string importPath;            // a folder to import at start
        std::vector<std::string> cameras;  // cameras offered to Import besides those detected
        Orvanta::CSize size;               // the window's size; (0, 0): the one remembered
    };

    explicit PhotosApp(Options options);
    ~PhotosApp() override;
    int run();

    void onCommand(Orvanta::Control* source, int command) override;
    // The window's own messages: closing, and a later instance handing over its command line.
    void onClose();
    void onOtherInstance(const Orvanta::CString& text);

private:
    class MainWindow;

    bool start();
    void pump();
    bool handleShortcut(const Orvanta::MSG& msg);
    void showGrid();
    void showPicture();
    void changeView();
    void importFolder(const Orvanta::CString& folder);
    void askImport();
    void importFromDevice();
    void deleteSelected();
    Orvanta::MemAssetList* photosToPrint();
    void printPhotos();
    void openIndex(int index);
    void leavePicture();
    void pictureCommand(int command);
    // Loads the open photo whole before its first edit; false (having said why) when it cannot be.
    bool editable();
    void edit(Orvanta::EditingOp* op);
    void startCrop(int a, int b);
    void tell(const std::string& text);
    bool ask(const std::string& text);
    // The keyboard back to the screen shown, after a message.
    void refocus();
    void remember();
    Orvanta::CPoint picturePoint(double x, double y);

    Options mOptions;
    Orvanta::Prefs mPrefs;
    std::unique_ptr<Orvanta::SingleInstance> mInstance;
    PhotoLibrary mLibrary;
    Orvanta::HWND mWindow = nullptr;
    Orvanta::OwnedPtr<Orvanta::Container> mRoot;
    std::unique_ptr<GridScreen> mGrid;
    std::unique_ptr<PictureScreen> mPicture;
    PictureSession mSession;
    int mSessionIndex = -1;
    std::unique_ptr<FolderImport> mImport;
    std::unique_ptr<InputScript> mScript;
    std::unique_ptr<OriginalsPolicy> mOriginals;
    bool mQuit = false;
    int mStatus = 0;
};

}  // namespace OrvantaPhotos
