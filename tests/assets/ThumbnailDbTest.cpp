// The thumbnail store: its file byte for byte against one built by hand, the validity rule by the
// file's write time, damage dropped or set aside rather than shown, and one thumbnail made once
// however many threads ask for it.

#include "orvanta/assets/ThumbnailDb.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "orvanta/assets/Asset.h"
#include "orvanta/assets/AssetFile.h"
#include "orvanta/assets/MemAssetList.h"
#include "orvanta/assets/ThumbnailBuilder.h"
#include "orvanta/codecs/CodecManager.h"
#include "orvanta/codecs/Image.h"
#include "orvanta/codecs/IntelJpegCodec.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/foundation/FileTime.h"
#include "orvanta/foundation/OrvantaSystem.h"
#include "orvanta/platform/FileSystem.h"
#include "orvanta/platform/FileTimes.h"
#include "orvanta/platform/MessageQueue.h"
#include "orvanta/store/StoreFormat.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using namespace OrvantaTest;

namespace {

// Registered once, and held here too: another test's registration may take its place in the registry.
IntelJpegCodec* jpeg() {
    static OwnedPtr<IntelJpegCodec> codec = [] {
        OwnedPtr<IntelJpegCodec> c = IntelJpegCodec::create();
        CodecManager::registerCodec(c);
        return c;
    }();
    return codec;
}

Dib* gradient(int width, int height) {
    return makeDib(width, height, [](int x, int y) { return Rgb{x % 256, y % 256, (x + y) % 256}; });
}

// A JPEG photograph of width x height at path, and an asset of it.
Asset* photo(const std::string& path, int width = 400, int height = 300) {
    OwnedPtr<Dib> dib = gradient(width, height);
    EXPECT_GT(jpeg()->write(dib, CString::fromUtf8(path), ImageQualityNormal), 0);
    return Asset::create(UniqueID::create(), CString::fromUtf8(path), nullptr, nullptr);
}

void setWriteTime(const std::string& path, FILETIME time, Asset* asset) {
    const struct timespec times[2] = {{0, UTIME_OMIT}, Platform::toTimespec(time)};
    ASSERT_EQ(0, utimensat(AT_FDCWD, path.c_str(), times, 0));
    asset->getAssetFile()->fileChanged();
}

FILETIME seconds(long long s) {
    return FileTime::fromInt64(s * 10000000LL);
}

void overwrite(const std::string& path, long offset, const std::string& bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY);
    ASSERT_EQ(static_cast<ssize_t>(bytes.size()), pwrite(fd, bytes.data(), bytes.size(), offset));
    ::close(fd);
}

}  // namespace

TEST(ThumbnailDb, FileIsTheRecordStoreOfThumbnailsByteForByteInTheFewestBlocksTheEncoderFills) {
    TempDir dir;
    ASSERT_TRUE(ThumbnailDb::createFile(dir.wide("thumbs.db"), 1024, 0));
    OwnedPtr<ThumbnailDb> store = ThumbnailDb::create(dir.wide("thumbs.db"), 160, 160, jpeg());
    const UniqueID ids[2] = {UniqueID::create(), UniqueID::create()};
    const FILETIME times[2] = {seconds(13000000000LL), {0, 0}};
    OwnedPtr<Image> wide = Image::create(gradient(400, 200), false),
                    small = Image::create(gradient(30, 20), false);
    ASSERT_TRUE(store->putThumbnail(ids[0], wide, times[0], true));
    ASSERT_TRUE(store->putThumbnail(ids[1], small, times[1], true));
    store = nullptr;

    // By hand: the header, then each record at the first free block: its head, its time and size,
    // and the picture in the smallest capacity the encoder succeeds in (the rule of the store that a
    // capacity of n > 1 blocks spans n + 1 of them kept), zeros after it.
    std::string expected(44 + 100 * 1024, '\0');
    std::memcpy(expected.data(), StoreFormat::kDatabaseMagic, 16);
    for (auto [at, value] : {std::pair{16, 1024}, {20, 100}, {24, 1}}) std::memcpy(&expected[at], &value, 4);
    std::size_t block = 0;
    for (int i = 0; i < 2; ++i) {
        OwnedPtr<DownsizeOp> fit =
            DownsizeOp::create(DownsizeOp::DownsizeMethodResample, CSize(160, 160), true, false);
        OwnedPtr<Dib> dib = i == 0 ? fit->doOp(wide->getDib(), nullptr) : small->getDib();
        std::string picture;
        int capacity = 984, length = 0;
        for (; length <= 0; capacity += 1024) {
            picture.assign(capacity - 16, '\0');
            length = jpeg()->writeToMemory(dib, picture.data(), capacity - 16, ImageQualityNormal);
        }
        capacity -= 1024;
        const std::size_t head = 44 + block * 1024;
        const std::int32_t fields[] = {1, capacity, dib->getSize().cx, dib->getSize().cy};
        std::memcpy(&expected[head], &fields[0], 4);
        ids[i].writeBytes(reinterpret_cast<unsigned char*>(&expected[head + 12]));
        std::memcpy(&expected[head + 28], &fields[1], 4);
        std::memcpy(&expected[head + 40], &times[i], 8);
        std::memcpy(&expected[head + 48], &fields[2], 8);
        std::memcpy(&expected[head + 56], picture.data(), static_cast<std::size_t>(length));
        block += capacity <= 984 ? 1 : (capacity - 984) / 1024 + 2;
    }
    EXPECT_TRUE(expected == readFileBytes(dir.file("thumbs.db")));
    EXPECT_GE(block, 4u) << "the wide picture takes more than one block";
}

TEST(ThumbnailDb, AThumbnailIsGoodWhileTheFileWasWrittenNoLaterThanItsStoredTime) {
    TempDir dir;
    OwnedPtr<Asset> asset = photo(dir.file("p.jpg"));  // registers the JPEG codec, the default one
    ASSERT_TRUE(ThumbnailDb::createFile(dir.wide("t.db"), 1024, 0));
    OwnedPtr<ThumbnailDb> store = ThumbnailDb::create(dir.wide("t.db"), CSize(160, 160), nullptr);
    const FILETIME made = asset->getAssetFile()->getWriteTime();
    EXPECT_FALSE(store->invalidate(asset) || store->isValid(asset));
    EXPECT_EQ(CSize(0, 0), store->getThumbnailSize(asset, false));
    EXPECT_EQ(CSize(160, 120), store->getThumbnailSize(asset, true));
    const struct {
        const char* step;
        std::function<void()> action;
        bool shownAsStored;
    } steps[] = {
        {"as made", [] {}, true},
        {"touched a second later", [&] { setWriteTime(dir.file("p.jpg"), made + seconds(1), asset); }, false},
        {"made again", [&] { OwnedPtr<Image>(store->getThumbnail(asset, true)); }, true},
        {"restored older", [&] { setWriteTime(dir.file("p.jpg"), made - seconds(86400), asset); }, true},
        {"invalidated", [&] { EXPECT_TRUE(store->invalidate(asset)); }, false},
        {"asked to create", [&] { EXPECT_EQ(CSize(160, 120), store->getThumbnailSize(asset, true)); }, true},
        {"file gone", [&] { unlink(dir.file("p.jpg").c_str()), asset->getAssetFile()->fileChanged(); }, true},
    };
    for (const auto& step : steps) {
        step.action();
        OwnedPtr<Image> shown = store->getThumbnail(asset, false);
        EXPECT_EQ(step.shownAsStored, shown != nullptr) << step.step;
    }
    // A picture smaller than the box keeps its size; an asset without a file shows what is stored.
    OwnedPtr<Image> small = Image::create(gradient(100, 50), false);
    OwnedPtr<Asset> fileless = Asset::create(UniqueID::create(), dir.wide("x.unknown"), nullptr, nullptr);
    for (Asset* a : {asset.get(), fileless.get()}) {
        ASSERT_TRUE(store->updateThumbnail(a, small));
        EXPECT_EQ(CSize(100, 50), store->getThumbnailSize(a, false));
    }
}

TEST(ThumbnailDb, DamageIsDroppedOrSetAsideAndMadeAgainNeverShown) {
    TempDir dir;
    const std::string path = dir.file("t.db");
    OwnedPtr<Asset> asset = photo(dir.file("p.jpg"));
    // The first record's payload starts at 44 + 40: time, width, height, then the JPEG.
    const struct {
        long offset;
        std::string bytes;
    } records[] = {{84 + 16, std::string(20, '\x55')},
                   {84 + 8, std::string("\xa1\0\0\0", 4)},
                   {84 + 12, std::string(4, '\0')}};
    ASSERT_TRUE(ThumbnailDb::createFile(dir.wide("t.db"), 1024, 0));
    OwnedPtr<ThumbnailDb> store = ThumbnailDb::create(dir.wide("t.db"), 160, 160, jpeg());
    int dropped = 0;
    for (const auto& damage : records) {
        ASSERT_TRUE(OwnedPtr<Image>(store->getThumbnail(asset, true)));
        overwrite(path, damage.offset, damage.bytes);
        EXPECT_FALSE(OwnedPtr<Image>(store->getThumbnail(asset, false)));
        EXPECT_EQ(++dropped, store->getDroppedCount());
        EXPECT_FALSE(store->isValid(asset)) << "the record is gone";
    }
    EXPECT_EQ(u"Cannot open database",
              messageOf([&] { ThumbnailDb::create(dir.wide("t.db"), 160, 160, jpeg()); }))
        << "a store another holder has open is not rebuilt";
    store = nullptr;

    std::string header(44, '\0');
    std::memcpy(header.data(), StoreFormat::kDatabaseMagic, 16);
    for (auto [at, value] : {std::pair{16, 2048}, {20, 5}}) std::memcpy(&header[at], &value, 4);
    const struct {
        std::string bytes;
        int blockSize;
    } files[] = {{"not a store at all", 1024}, {header + std::string(2048, '\0'), 2048}};
    for (const auto& file : files) {
        writeFileBytes(path, file.bytes);
        store = ThumbnailDb::create(dir.wide("t.db"), 160, 160, jpeg());
        EXPECT_TRUE(store->wasRebuilt());
        EXPECT_EQ(file.bytes, readFileBytes(path + "-damaged"));
        ASSERT_TRUE(OwnedPtr<Image>(store->getThumbnail(asset, true)));
        store = nullptr;
        EXPECT_EQ(file.blockSize, *reinterpret_cast<const std::int32_t*>(readFileBytes(path).data() + 16));
    }
    EXPECT_EQ(u"Cannot open database",
              messageOf([&] { ThumbnailDb::create(dir.wide("none.db"), 160, 160, jpeg()); }));
}

TEST(ThumbnailDb, ThreadsAskingForOneThumbnailAtOnceHaveItMadeOnceAndAllGetIt) {
    TempDir dir;
    OwnedPtr<Asset> original = photo(dir.file("p.jpg"));
    ASSERT_TRUE(ThumbnailDb::createFile(dir.wide("t.db"), 1024, 0));
    OwnedPtr<ThumbnailDb> store = ThumbnailDb::create(dir.wide("t.db"), 160, 160, jpeg());
    constexpr int kThreads = 4;
    // Counts the reads of the photo; the first holds until every thread has asked.
    struct Reads : Platform::FileSystem {
        int open(const char* path, int flags, mode_t mode) override {
            if (photo == path && reads++ == 0)
                while (asked < kThreads) std::this_thread::yield();
            return FileSystem::open(path, flags, mode);
        }
        std::string photo;
        std::atomic<int> reads{0}, asked{0};
    } reads;
    reads.photo = dir.file("p.jpg");
    CodecManager::disableFastThumbnailing();
    Platform::FileSystem::install(&reads);
    // Each thread its own asset of the photo, owned here until the threads are done.
    std::vector<OwnedPtr<Asset>> assets;
    std::vector<std::thread> threads;
    std::atomic<int> shown{0};
    for (int i = 0; i < kThreads; ++i) assets.push_back(original->clone());
    for (Asset* asset : assets)
        threads.emplace_back([&, asset] {
            ++reads.asked;
            if (OwnedPtr<Image>(store->getThumbnail(asset, true))) ++shown;
        });
    for (auto& t : threads) t.join();
    Platform::FileSystem::install(nullptr);
    CodecManager::enableFastThumbnailing(true);
    EXPECT_EQ(1, reads.reads.load());
    EXPECT_EQ(kThreads, shown.load());
}

TEST(ThumbnailBuilder, FillsTheStoreForEveryAssetLackingAGoodOneAndResumesWhereItWasStopped) {
    init();
    TempDir dir;
    ASSERT_TRUE(ThumbnailDb::createFile(dir.wide("t.db"), 1024, 0));
    OwnedPtr<ThumbnailDb> store = ThumbnailDb::create(dir.wide("t.db"), 160, 160, jpeg());
    OwnedPtr<MemAssetList> list = MemAssetList::create();
    std::map<UniqueID, ThumbnailBuilder::Outcome> expected;
    for (int i = 0; i < 8; ++i) {
        OwnedPtr<Asset> asset = photo(dir.file(std::to_string(i) + ".jpg"), 200 + i, 100);
        list->addAsset(asset, false);
        expected[asset->getID()] = ThumbnailBuilder::kMade;
        if (i == 0 && store->updateThumbnail(asset, nullptr))
            expected[asset->getID()] = ThumbnailBuilder::kGood;
        if (i == 1 && unlink(dir.file("1.jpg").c_str()) == 0)
            expected[asset->getID()] = ThumbnailBuilder::kGone;
    }
    writeFileBytes(dir.file("damaged.jpg"), "\xff\xd8 not really");
    for (const char* name : {"damaged.jpg", "unknown.xyz"}) {
        OwnedPtr<Asset> asset = Asset::create(UniqueID::create(), dir.wide(name), nullptr, nullptr);
        list->addAsset(asset, false);
        expected[asset->getID()] = ThumbnailBuilder::kFailed;
    }
    struct Outcomes : EventListener {
        void onEvent(Event* event) override {
            auto* progress = static_cast<ThumbnailBuilder::Progress*>(event);
            EXPECT_TRUE(indexes.insert(progress->index).second) << "each asset once";
            outcomes[progress->id] = progress->outcome;
        }
        std::set<std::size_t> indexes;
        std::map<UniqueID, ThumbnailBuilder::Outcome> outcomes;
    } heard;
    OwnedPtr<ThumbnailBuilder> builder = ThumbnailBuilder::create(store, list, &heard, 2);
    const auto finish = [&] {
        for (Task* task : builder->getTasks()) task->waitForComplete(false, -1);
        MSG msg;
        while (Platform::peekMessage(&msg, 0, 0, PM_REMOVE)) processMessage(&msg, nullptr);
    };
    builder->start();
    builder->stop();
    finish();
    EXPECT_EQ(builder->getStarted(), heard.indexes.size())
        << "the assets in hand were finished, no other begun";
    builder->start();
    finish();
    EXPECT_EQ(expected, heard.outcomes);
    for (const auto& [id, outcome] : expected)
        EXPECT_EQ(outcome == ThumbnailBuilder::kMade || outcome == ThumbnailBuilder::kGood,
                  store->isValid(OwnedPtr<Asset>(list->getAsset(id))));
    builder = nullptr;
    deinit();
}
