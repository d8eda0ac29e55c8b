// The acquire wizard on a real run, its pages plain labels: a camera and a scanner's feeder scanned,
// chosen and copied; a second scan; nothing found; a scan cancelled; a driver that crashes (result
// 3). After every road out no temporary file is left.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "orvanta/acquire/AcquireWizard.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/platform/SaneHelper.h"
#include "orvanta/toolkit/Label.h"
#include "tests/acquire/AcquireFixtures.h"
#include "tests/support/DirectoryCamera.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"
#include "tests/support/UiHarness.h"

using namespace Orvanta;
using namespace OrvantaTest;
namespace fs = std::filesystem;

namespace {

class LabelWizard : public AcquireWizard {
public:
    static LabelWizard* create() { return new LabelWizard(); }
    Container* page(int n) {
        built.push_back(n);
        return createPage(n, Label::create(CString::fromUtf8("page " + std::to_string(n))), n - 1,
                          n < 4 ? n + 1 : -1);
    }
    Container* constructScanPage() override { return page(0); }
    Container* constructChoosePage() override { return page(1); }
    Container* constructSettingsPage() override { return page(2); }
    Container* constructCopyPage() override { return page(3); }
    Container* constructSummaryPage() override { return page(4); }
    void onPhotoFound(const UniqueID&) override { ++found; }
    void onPhotoCopied(const UniqueID&, const CString& path) override { copies.push_back(path.toUtf8()); }
    std::vector<int> built;
    int found = 0;
    std::vector<std::string> copies;
};

// A wizard on a device, shown modeless over the harness's window; prepare runs before it is shown.
OwnedPtr<LabelWizard> showWizard(UiHarness& ui, int type, const std::string& id,
                                 const std::function<void(LabelWizard*)>& prepare = nullptr) {
    OwnedPtr<LabelWizard> wizard = LabelWizard::create();
    wizard->setDevice(type, CString::fromUtf8(id));
    if (prepare) prepare(wizard);
    wizard->showModeless(400, 300, u"Import", ui.window());
    return wizard;
}

}  // namespace

class WizardTest : public AcquireTest {};

// A whole run of a camera and of a scanner's feeder: found, chosen, copied, and every temporary file
// (the thumbnail store, a scanner's pictures) gone with the wizard.
TEST_F(WizardTest, CameraAndScannerRunsGoThroughEveryPageAndLeaveNoTemporaryFile) {
    PrivateSane sane;
    DirectoryCamera camera(4);
    const struct {
        TwainSupport::TwainMode mode;
        std::string id;
        std::vector<std::string> options;
        const char16_t* baseName;
        int found, copied;
        bool deletes;
    } runs[] = {
        {TwainSupport::kTwainNever, camera.id(), {}, u"", 5, 5, true},
        // One base name for every page: the first takes it, the others find it taken.
        {TwainSupport::kTwainAlways,
         "Noname|frontend-tester|test:0",
         {"source=Automatic Document Feeder", "resolution=50"},
         u"scan",
         10,
         1,
         false},
    };
    for (const auto& run : runs) {
        if (run.mode == TwainSupport::kTwainAlways && Platform::SaneHelper::helperPath().empty()) continue;
        UiHarness ui;
        TempDir target;
        PrivateTemp temp;
        TwainSupport::setTwainMode(run.mode);
        {
            OwnedPtr<LabelWizard> wizard = showWizard(ui, kSourceImagingDevice, run.id, [&](LabelWizard* w) {
                w->setScanOptions(run.options);
                w->setTarget(CString::fromUtf8(target.path()), run.baseName);
            });
            EXPECT_EQ(wizard->supportsDeleteAfterCopy(), run.deletes) << run.id;
            ASSERT_TRUE(pumpUntil([&] {
                return wizard->getCurrentPage() == AcquireWizard::kChoosePage || !wizard->getContainer();
            })) << run.id;
            ASSERT_TRUE(wizard->getContainer()) << run.id;
            EXPECT_EQ(wizard->found, run.found) << run.id;
            EXPECT_GE(temp.count(), 2u) << "the thumbnail store and its journal";
            wizard->goToPage(AcquireWizard::kSettingsPage);
            wizard->goToPage(AcquireWizard::kCopyPage);
            ASSERT_TRUE(pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }));
            EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kCopied) << run.id;
            EXPECT_EQ(wizard->getTotalPhotosCopied(), run.copied) << run.id;
            EXPECT_EQ(wizard->copies.size(), static_cast<std::size_t>(run.copied)) << run.id;
            if (run.mode == TwainSupport::kTwainNever) {
                // A second look at the same camera reuses the task and counts again from nothing.
                wizard->beginScanTask();
                ASSERT_TRUE(pumpUntil([&] { return wizard->found == 10; }));
                EXPECT_EQ(wizard->getTotalPhotosFound(), 5);
            }
            wizard->close(IDOK);
        }
        EXPECT_EQ(temp.count(), 0u) << run.id;
    }
    TwainSupport::setTwainMode(TwainSupport::kTwainNever);
}

TEST_F(WizardTest, NothingFoundAndCancelledScan) {
    UiHarness ui;
    TempDir card;
    PrivateTemp temp;
    fs::create_directories(card.file("DCIM"));
    {
        OwnedPtr<LabelWizard> wizard = showWizard(ui, kSourceRemovableDrive, card.path());
        ASSERT_TRUE(pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }));
        EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kNoPhotos);
        EXPECT_EQ(wizard->built, (std::vector<int>{0, 4})) << "the choosing page is skipped";
    }
    EXPECT_EQ(temp.count(), 0u);

    const std::vector<std::string> photos = testDataFiles("jpeg", {".jpg"});
    for (std::size_t i = 0; i < 60; ++i)
        fs::copy_file(photos[i % photos.size()], card.file("DCIM/p" + std::to_string(i) + ".jpg"));
    {
        OwnedPtr<LabelWizard> wizard = showWizard(ui, kSourceRemovableDrive, card.path());
        wizard->cancelScan();
        ASSERT_TRUE(pumpUntil([&] { return !wizard->getContainer(); }))
            << "a cancelled scan closes the wizard";
        EXPECT_LT(wizard->found, 60);
    }
    EXPECT_EQ(temp.count(), 0u);
}

// In a child process of its own, since the crash flag lasts for the process.
TEST_F(WizardTest, DriverCrashDuringTheScanEndsOnTheSummaryWithResultThree) {
    if (Platform::SaneHelper::helperPath().empty()) GTEST_SKIP() << "orvanta-sane-helper is not built";
    PrivateSane sane;
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("ORVANTA_CRASH_BACKEND", "read", 1);
            UiHarness ui;
            PrivateTemp temp;
            TwainSupport::setTwainMode(TwainSupport::kTwainAlways);
            int result = -1;
            {
                OwnedPtr<LabelWizard> wizard =
                    showWizard(ui, kSourceImagingDevice, "Orvanta|Crash Tester|orvantacrash:0");
                if (pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }))
                    result = wizard->getCopyResults();
            }
            std::exit(result == AcquireWizard::kTwainCrashed && temp.count() == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
