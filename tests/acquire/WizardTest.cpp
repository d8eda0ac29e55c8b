// The acquire wizard on a real run, its pages plain labels: a camera scanned, chosen and copied;
// nothing found; a scan cancelled; debugging mode; a second scan; a scanner's temporary pictures and
// a driver that crashes (result 3). After every road out no temporary file is left.

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <thread>

#include "orvanta/acquire/AcquireWizard.h"
#include "orvanta/acquire/TwainSupport.h"
#include "orvanta/assets/AssetList.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/MessageQueue.h"
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

private:
    LabelWizard() = default;
};

// Runs the loop as a host does until done() holds or two minutes pass.
bool pumpUntil(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        MSG msg;
        while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE))
            if (!processMessage(&msg, nullptr)) Platform::dispatchMessage(&msg);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace

class WizardTest : public ::testing::Test {
protected:
    void SetUp() override {
        ORVANTA_REQUIRE_TESTDATA();
        registerAcquireCodecs();
        TwainSupport::setTwainMode(TwainSupport::kTwainNever);
    }
};

TEST_F(WizardTest, CameraRunGoesThroughEveryPageAndLeavesNoTemporaryFile) {
    UiHarness ui;
    DirectoryCamera camera(4);
    TempDir target;
    PrivateTemp temp;
    OwnedPtr<LabelWizard> wizard = LabelWizard::create();
    wizard->setDevice(kSourceImagingDevice, CString::fromUtf8(camera.id()));
    wizard->setTarget(CString::fromUtf8(target.path()), CString());
    EXPECT_TRUE(wizard->supportsDeleteAfterCopy());
    wizard->showModeless(400, 300, u"Import", ui.window());
    ASSERT_TRUE(pumpUntil([&] {
        return wizard->getCurrentPage() == AcquireWizard::kChoosePage || !wizard->getContainer();
    })) << wizard->found;
    ASSERT_TRUE(wizard->getContainer());
    EXPECT_EQ(wizard->getTotalPhotosFound(), 5);
    EXPECT_EQ(wizard->found, 5);
    EXPECT_EQ(wizard->getAssetList()->getCount(), 5);
    EXPECT_EQ(temp.count(), 2u) << "the thumbnail store and its journal";
    wizard->goToPage(AcquireWizard::kSettingsPage);
    wizard->goToPage(AcquireWizard::kCopyPage);
    ASSERT_TRUE(pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }));
    EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kCopied);
    EXPECT_EQ(wizard->getTotalPhotosCopied(), 5);
    EXPECT_EQ(wizard->copies.size(), 5u);
    for (const std::string& f : camera.files())
        EXPECT_EQ(readFileBytes(target.file(fs::path(f).filename().string())),
                  readFileBytes(camera.localPath(f)));

    // A second look at the same camera reuses the task and counts again from nothing.
    wizard->beginScanTask();
    ASSERT_TRUE(pumpUntil([&] { return wizard->found == 10; }));
    EXPECT_EQ(wizard->getTotalPhotosFound(), 5);
    wizard->close(IDOK);
    wizard = nullptr;
    EXPECT_EQ(temp.count(), 0u);
}

TEST_F(WizardTest, NothingFoundCancelledScanAndDebuggingMode) {
    UiHarness ui;
    TempDir card;
    PrivateTemp temp;
    fs::create_directories(card.file("DCIM"));
    {
        OwnedPtr<LabelWizard> wizard = LabelWizard::create();
        wizard->setDevice(kSourceRemovableDrive, CString::fromUtf8(card.path()));
        wizard->showModeless(400, 300, u"Import", ui.window());
        ASSERT_TRUE(pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }));
        EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kNoPhotos);
        EXPECT_EQ(wizard->built, (std::vector<int>{0, 4})) << "the choosing page is skipped";
    }
    EXPECT_EQ(temp.count(), 0u);

    const std::vector<std::string> photos = testDataFiles("jpeg", {".jpg"});
    for (std::size_t i = 0; i < 60; ++i)
        fs::copy_file(photos[i % photos.size()], card.file("DCIM/p" + std::to_string(i) + ".jpg"));
    {
        OwnedPtr<LabelWizard> wizard = LabelWizard::create();
        wizard->setDevice(kSourceRemovableDrive, CString::fromUtf8(card.path()));
        wizard->showModeless(400, 300, u"Import", ui.window());
        wizard->cancelScan();
        ASSERT_TRUE(pumpUntil([&] { return !wizard->getContainer(); }))
            << "a cancelled scan closes the wizard";
        EXPECT_LT(wizard->found, 60);
    }
    EXPECT_EQ(temp.count(), 0u);
    {
        OwnedPtr<LabelWizard> wizard = LabelWizard::create();
        wizard->setDebuggingMode(true);
        wizard->setDevice(kSourceRemovableDrive, CString::fromUtf8(card.path()));
        wizard->showModeless(400, 300, u"Import", ui.window());
        ui.runFor(200);
        EXPECT_EQ(wizard->getCurrentPage(), AcquireWizard::kScanPage);
        EXPECT_EQ(wizard->found, 0) << "no task runs";
        wizard->close(0);
    }
    EXPECT_EQ(temp.count(), 0u);
}

TEST_F(WizardTest, ScannersTemporaryPicturesGoWithTheWizard) {
    if (Platform::SaneHelper::helperPath().empty()) GTEST_SKIP() << "orvanta-sane-helper is not built";
    PrivateSane sane;
    TempDir target;
    {
        UiHarness ui;
        PrivateTemp temp;
        TwainSupport::setTwainMode(TwainSupport::kTwainAlways);
        {
            OwnedPtr<LabelWizard> wizard = LabelWizard::create();
            wizard->setDevice(kSourceImagingDevice, u"Noname|frontend-tester|test:0");
            wizard->setScanOptions({"source=Automatic Document Feeder", "resolution=50"});
            wizard->setTarget(CString::fromUtf8(target.path()), u"scan");
            wizard->showModeless(400, 300, u"Scan", ui.window());
            ASSERT_TRUE(pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kChoosePage; }));
            EXPECT_EQ(wizard->found, 10);
            EXPECT_FALSE(wizard->supportsDeleteAfterCopy());
            wizard->goToPage(AcquireWizard::kCopyPage);
            ASSERT_TRUE(pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }));
            // One base name for every page: the first takes it, the others find it taken.
            EXPECT_EQ(wizard->getTotalPhotosCopied(), 1);
            EXPECT_EQ(wizard->getCopyResults(), AcquireWizard::kCopied);
            EXPECT_TRUE(fs::exists(target.file("scan.jpg")));
            EXPECT_GT(temp.count(), 10u) << "the pictures wait in the temporary folder";
        }
        EXPECT_EQ(temp.count(), 0u);
        TwainSupport::setTwainMode(TwainSupport::kTwainNever);
    }
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
                OwnedPtr<LabelWizard> wizard = LabelWizard::create();
                wizard->setDevice(kSourceImagingDevice, u"Orvanta|Crash Tester|orvantacrash:0");
                wizard->showModeless(400, 300, u"Scan", ui.window());
                if (pumpUntil([&] { return wizard->getCurrentPage() == AcquireWizard::kSummaryPage; }))
                    result = wizard->getCopyResults();
            }
            std::exit(result == AcquireWizard::kTwainCrashed && temp.count() == 0 ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}
