// orvanta batch-convert, run as a user runs it: a folder of real photographs, a box, Ctrl-C.

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "orvanta/codecs/OrvantaIU.h"
#include "tests/support/TempDir.h"
#include "tests/support/TestData.h"

extern char** environ;

namespace fs = std::filesystem;
using namespace OrvantaTest;

namespace {

std::string toolPath() {
    if (const char* configured = std::getenv("ORVANTA_TOOL")) return configured;
    return (fs::read_symlink("/proc/self/exe").parent_path() / "orvanta").string();
}

// A running orvanta with its standard output on a pipe.
class Tool {
public:
    // The tool's error messages go to errorPath.
    explicit Tool(const std::vector<std::string>& arguments, const std::string& errorPath = "/dev/null") {
        int pipeEnds[2];
        if (pipe(pipeEnds) != 0) throw std::runtime_error("pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipeEnds[1], 1);
        posix_spawn_file_actions_addclose(&actions, pipeEnds[0]);
        posix_spawn_file_actions_addopen(&actions, 2, errorPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        std::vector<std::string> all{toolPath()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        std::vector<char*> argv;
        for (auto& a : all) argv.push_back(a.data());
        argv.push_back(nullptr);
        const int spawned = posix_spawn(&mPid, argv[0], &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(pipeEnds[1]);
        mOut = pipeEnds[0];
        if (spawned != 0) throw std::runtime_error("cannot start " + all[0]);
    }
    ~Tool() {
        if (mPid > 0) finish();
    }

    void signal(int number) { kill(mPid, number); }

    // False once the process has ended; its status is then what finish() returns.
    bool running() {
        if (mExited) return false;
        int status = 0;
        if (waitpid(mPid, &status, WNOHANG) != mPid) return true;
        mExited = true;
        mStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        return false;
    }

    // Waits for the end; returns the exit status (128 + signal for a killed process).
    int finish() {
        char buffer[4096];
        for (ssize_t n; (n = read(mOut, buffer, sizeof buffer)) > 0;)
            output.append(buffer, static_cast<std::size_t>(n));
        close(mOut);
        if (!mExited) {
            int status = 0;
            waitpid(mPid, &status, 0);
            mStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        }
        mPid = -1;
        return mStatus;
    }

    std::string output;

private:
    pid_t mPid = -1;
    int mOut = -1;
    bool mExited = false;
    int mStatus = -1;
};

int run(const std::vector<std::string>& arguments, std::string* output = nullptr,
        const std::string& errorPath = "/dev/null") {
    Tool tool(arguments, errorPath);
    const int status = tool.finish();
    if (output) *output = tool.output;
    return status;
}

std::vector<fs::path> filesIn(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// Whether every file is a whole picture of the given type inside the box.
void expectPicturesInBox(const std::vector<fs::path>& files, int expectedType, int box) {
    for (const auto& file : files) {
        int type = 0, width = 0, height = 0, quality = 0;
        EXPECT_TRUE(orvantaIUGetImageFileInformationU8(file.c_str(), &type, &width, &height, &quality))
            << file;
        EXPECT_EQ(expectedType, type) << file;
        EXPECT_GT(width, 0) << file;
        EXPECT_LE(width, box) << file;
        EXPECT_LE(height, box) << file;
        EXPECT_NE('.', file.filename().string()[0]) << "a temporary was left: " << file;
    }
}

class BatchConvertTest : public ::testing::Test {
protected:
    void SetUp() override {
        orvantaIUInit();
        fs::create_directory(source());
    }
    void TearDown() override { orvantaIUDeInit(); }
    fs::path source() const { return fs::path(temp.path()) / "in"; }
    fs::path destination() const { return fs::path(temp.path()) / "out"; }
    void link(const std::string& testFile, const std::string& name) {
        fs::create_symlink(testDataPath(testFile), source() / name);
    }

    TempDir temp;
};

}  // namespace

TEST_F(BatchConvertTest, ConvertsEveryPictureIntoTheBox) {
    ORVANTA_REQUIRE_TESTDATA();
    link("jpeg/canon-powershot-s40-2272x1704.jpg", "a.jpg");
    link("jpeg/canon-powershot-a85-orient8.jpg", "b.jpg");
    link("jpeg/sony-dsc-hx5v-730x547.jpg", "c.jpg");
    std::string output;
    EXPECT_EQ(0, run({"batch-convert", source(), destination(), "--max", "160x160", "--jobs", "2"}, &output));
    EXPECT_NE(std::string::npos, output.find("3 of 3 files converted")) << output;
    const auto files = filesIn(destination());
    ASSERT_EQ(3u, files.size());
    EXPECT_EQ("a.jpg", files[0].filename());
    expectPicturesInBox(files, 1, 160);
}

TEST_F(BatchConvertTest, ChangesTheTypeOnRequest) {
    ORVANTA_REQUIRE_TESTDATA();
    link("jpeg/fujifilm-finepix40i-600x450.jpg", "f.jpg");
    EXPECT_EQ(0, run({"batch-convert", source(), destination(), "--max", "200x200", "--to", "bmp"}));
    const auto files = filesIn(destination());
    ASSERT_EQ(1u, files.size());
    EXPECT_EQ("f.bmp", files[0].filename());
    expectPicturesInBox(files, 3, 200);
}

TEST_F(BatchConvertTest, UnreadablePictureIsReportedAndTheOthersConverted) {
    ORVANTA_REQUIRE_TESTDATA();
    link("jpeg/olympus-c960-640x480.jpg", "good.jpg");
    writeFileBytes((source() / "broken.jpg").string(),
                   std::string("\xFF\xD8\xFF\xE0 not really a picture", 26));
    std::string output;
    const std::string errors = temp.file("errors.txt");
    EXPECT_EQ(1, run({"batch-convert", source(), destination(), "--max", "160x160"}, &output, errors));
    EXPECT_NE(std::string::npos, output.find("1 of 2 files converted")) << output;
    EXPECT_NE(std::string::npos,
              readFileBytes(errors).find("cannot convert " + (source() / "broken.jpg").string()));
    const auto files = filesIn(destination());
    ASSERT_EQ(1u, files.size());
    EXPECT_EQ("good.jpg", files[0].filename());
}

TEST_F(BatchConvertTest, InterruptKeepsFinishedFilesWholeAndSaysHowMany) {
    ORVANTA_REQUIRE_TESTDATA();
    constexpr int kFiles = 200;
    for (int i = 0; i < kFiles; ++i)
        link("large/canon-22mp-5760x3840-iptc-xmp.jpg", "p" + std::to_string(1000 + i) + ".jpg");
    Tool tool({"batch-convert", source(), destination(), "--max", "160x160", "--jobs", "2"});
    // Interrupt once the first picture is there, as a user who changed their mind.
    while (tool.running() && (!fs::exists(destination()) || filesIn(destination()).size() < 2))
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    ASSERT_TRUE(tool.running()) << "the batch ended before it could be interrupted: " << tool.finish();
    tool.signal(SIGINT);
    EXPECT_EQ(130, tool.finish());
    std::smatch match;
    ASSERT_TRUE(
        std::regex_search(tool.output, match, std::regex("interrupted; (\\d+) of 200 files converted")))
        << tool.output;
    const auto files = filesIn(destination());
    EXPECT_EQ(std::stoul(match[1]), files.size()) << "the count is that of the files left";
    EXPECT_LT(files.size(), static_cast<std::size_t>(kFiles));
    expectPicturesInBox(files, 1, 160);
}

TEST_F(BatchConvertTest, RefusesToConvertIntoTheSourceFolder) {
    ORVANTA_REQUIRE_TESTDATA();
    link("jpeg/olympus-c960-640x480.jpg", "o.jpg");
    EXPECT_EQ(1, run({"batch-convert", source(), source(), "--max", "160x160"}));
    EXPECT_EQ(1u, filesIn(source()).size());
}

TEST_F(BatchConvertTest, BadArgumentsAreRefused) {
    EXPECT_EQ(2, run({"batch-convert", source()}));
    EXPECT_EQ(2, run({"batch-convert", source(), destination(), "--max", "160"}));
    EXPECT_EQ(2, run({"batch-convert", source(), destination(), "--quality", "best"}));
    EXPECT_EQ(2, run({"batch-convert", source(), destination(), "--jobs", "0"}));
    EXPECT_FALSE(fs::exists(destination()));
}
