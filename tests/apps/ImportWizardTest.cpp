// Orvanta Photos' import wizard driven by input posted as the display sends it: a camera through
// every page into the catalogue, a cancel on each page, and a scanner driver that crashes. After
// every road out the temporary folder is empty.

#include <gtest/gtest.h>

#include <SDL.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>

#include "apps/photos/ImportSources.h"
#include "apps/photos/ImportWizard.h"
#include "apps/photos/PhotoLibrary.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/AssetIterator.h"
#include "orvanta/assets/SpecialFolder.h"
#include "orvanta/platform/SaneHelper.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/DirectoryCamera.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace OrvantaPhotos;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

class ImportWizardTest : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        ASSERT_TRUE(library.open(dir.file("catalogue.db"))) << library.lastError();
    }
    void show(int type, const std::string& id, ImportSource::Kind kind) {
        ImportSource{type, kind, CString::fromUtf8(id), u"Test"}.use();
        wizard = ImportWizard::create(library.catalogue(), u"Test");
        wizard->setDevice(type, CString::fromUtf8(id));
        wizard->showModeless(ImportWizard::kSize.cx, ImportWizard::kSize.cy, u"Import", ui.window());
        ui.setInputWindow(wizard->getContainer()->getHWND());
    }
    void press(int page, int id) { ui.click(ui.pointIn(wizard->button(page, id))); }
    // Runs the loop until done() holds, or two minutes pass.
    bool runUntil(const std::function<bool()>& done) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        while (!done() && std::chrono::steady_clock::now() < deadline) ui.runFor(10);
        return done();
    }
    bool reached(int page) {
        return runUntil([&] { return !wizard->getContainer() || wizard->getCurrentPage() == page; }) &&
               wizard->getContainer();
    }

    // The codecs before the harness starts the library, which would keep them from registering.
    const bool codecs = (registerAcquireCodecs(), true);
    TempDir dir;
    PrivateTemp temp;
    UiHarness ui{CSize(900, 700)};
    PhotoLibrary library;
    OwnedPtr<ImportWizard> wizard;
};

TEST_F(ImportWizardTest, ACameraThroughEveryPageIntoTheCatalogueDeletingWhatWasCopied) {
    DirectoryCamera camera(6);
    const std::size_t before = temp.count();  // the camera's own folders
    show(kSourceImagingDevice, camera.id(), ImportSource::kCamera);
    ASSERT_TRUE(reached(AcquireWizard::kChoosePage));
    ThumbnailControl* grid = wizard->choosingGrid();
    EXPECT_EQ(grid->getSelection()->getCount(), 7) << "everything found is chosen at first";
    press(AcquireWizard::kChoosePage, ImportWizard::kSelectNone);
    ui.runUntilIdle();
    press(AcquireWizard::kChoosePage, Wizard::kNextButton);
    ui.runUntilIdle();
    EXPECT_EQ(wizard->getCurrentPage(), AcquireWizard::kChoosePage)
        << "nothing chosen, nothing to go on with";
    // The second photo clicked, the third added with Shift.
    const CRect second = grid->cellRect(grid->cellFromIndex(1), false);
    ui.click(ui.pointIn(grid, &second));
    ui.pressKey(SDLK_RIGHT, true);
    ASSERT_TRUE(runUntil([&] { return grid->getSelection()->getCount() == 2; }));
    std::map<std::string, std::string> chosen;  // file name: bytes
    OwnedPtr<AssetIterator> it = grid->getSelection()->createIterator();
    for (bool more = it->first(); more; more = it->next()) {
        PropertyList* properties = it->current()->getProperties();
        chosen[properties->getValue(Asset::kPropFilename).asString().toUtf8()] =
            readFileBytes(camera.localPath(properties->getValue(Asset::kPropFolder).asString().toUtf8()));
    }
    press(AcquireWizard::kChoosePage, Wizard::kNextButton);
    ASSERT_TRUE(reached(AcquireWizard::kSettingsPage));
    EXPECT_EQ(wizard->folderField()->getText(), SpecialFolder::getFolder(SpecialFolder::kMyPictures));
    const CRect remove = wizard->deleteChoice()->getChoiceRect(1);
    ui.click(ui.pointIn(wizard->deleteChoice(), &remove));
    ui.click(ui.pointIn(wizard->folderField()));
    ui.pressKey(SDLK_a, false, true);
    ui.typeText(dir.file("imported").c_str());
    ui.pressKey(SDLK_RETURN);
    ASSERT_TRUE(reached(AcquireWizard::kSummaryPage));
    EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kCopied);
    EXPECT_NE(wizard->getSummary().toUtf8().find("Copied 2, skipped 0, failed 0."), std::string::npos)
        << wizard->getSummary().toUtf8();
    ASSERT_EQ(library.catalogue()->getCount(), 2);
    for (int i = 0; i < 2; ++i) {
        OwnedPtr<Asset> asset = library.catalogue()->getAsset(i);
        const std::string name = asset->getProperties()->getValue(Asset::kPropFilename).asString().toUtf8();
        ASSERT_TRUE(chosen.count(name)) << name;
        EXPECT_EQ(readFileBytes(asset->getAssetFile()->getPath().toUtf8()), chosen[name]);
        EXPECT_EQ(asset->getAssetFile()->getPath().toUtf8(), dir.file("imported/" + name));
    }
    std::size_t left = 0;
    for (const std::string& f : camera.files()) left += fs::exists(camera.localPath(f));
    EXPECT_EQ(left, camera.files().size() - 2) << "the copied photos, and only they, left the camera";
    press(AcquireWizard::kSummaryPage, IDOK);
    ASSERT_TRUE(runUntil([&] { return !wizard->getContainer(); }));
    wizard = nullptr;
    EXPECT_EQ(temp.count(), before);
}

TEST_F(ImportWizardTest, CancelOnEachPageLeavesNoTemporaryFile) {
    const std::vector<std::string> photos = testDataFiles("jpeg", {".jpg"});
    fs::create_directories(dir.file("card/DCIM"));
    for (std::size_t i = 0; i < 60; ++i)
        fs::copy_file(photos[i % photos.size()], dir.file("card/DCIM/p" + std::to_string(i) + ".jpg"));
    for (int page = AcquireWizard::kScanPage; page <= AcquireWizard::kCopyPage; ++page) {
        show(kSourceRemovableDrive, dir.file("card"), ImportSource::kRemovable);
        if (page > AcquireWizard::kScanPage) {
            ASSERT_TRUE(reached(AcquireWizard::kChoosePage));
        }
        for (int p = AcquireWizard::kChoosePage; p < page; ++p) {
            if (p == AcquireWizard::kSettingsPage) wizard->folderField()->setText(dir.wide("copies"));
            press(p, Wizard::kNextButton);
            if (p + 1 < AcquireWizard::kCopyPage) {
                ASSERT_TRUE(reached(p + 1));
            }
        }
        // The copy's Cancel stands where the settings page's does: both go in one turn of the loop.
        press(std::min(page, static_cast<int>(AcquireWizard::kSettingsPage)), IDCANCEL);
        if (page == AcquireWizard::kCopyPage) {
            ASSERT_TRUE(reached(AcquireWizard::kSummaryPage));
            EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kNotAllCopied);
            EXPECT_NE(wizard->getSummary().toUtf8().find("stopped"), std::string::npos);
            EXPECT_EQ(library.catalogue()->getCount(), wizard->getTotalPhotosCopied());
            EXPECT_LT(wizard->getTotalPhotosCopied(), 60);
            wizard->close(IDOK);
        }
        ASSERT_TRUE(runUntil([&] { return !wizard->getContainer(); })) << page;
        EXPECT_FALSE(wizard->sourceFailed());
        wizard = nullptr;
        EXPECT_EQ(temp.count(), 0u) << page;
    }
}

// In a child process of its own, since the crash flag lasts for the process.
TEST_F(ImportWizardTest, AScannerDriverCrashEndsOnTheSummaryWithResultThreeAndWhy) {
    if (Platform::SaneHelper::helperPath().empty()) GTEST_SKIP() << "orvanta-sane-helper is not built";
    PrivateSane sane;
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("ORVANTA_CRASH_BACKEND", "read", 1);
            const std::size_t before = temp.count();  // the private SANE's settings
            show(kSourceImagingDevice, "Orvanta|Crash Tester|orvantacrash:0", ImportSource::kScanner);
            const bool ended =
                reached(AcquireWizard::kSummaryPage) &&
                wizard->getCopyResults() == AcquireWizard::kTwainCrashed &&
                wizard->getSummary().toUtf8().find("driver stopped working") != std::string::npos;
            wizard = nullptr;
            std::exit(ended && temp.count() == before ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
