/**
 * @file
 * @brief What the disk holds when the power goes, at every step of a write to the store.
 *
 * The calls that change the disk are watched. Until a file is synchronised a power cut leaves of
 * it what it last had, until its directory is, either its old or its new name.
 */
#include "Board.h"
#include "NxuConfig.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <map>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace
{

using os::bsp::NxuConfig;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testsupport::Board;
using testsupport::readFile;

/** What a crash at one instant leaves. */
struct Image
{
    std::string step;
    std::optional<std::string> store; /**< Contents of config.mdb, if there is one. */
};

/** The disk as the watched calls change it. */
class Disk
{
public:
    /** Starts to watch the board's files; what they hold counts as safe. */
    void watch(const Board& board)
    {
        m_path = board.file("config.mdb");
        if (board.has("config.mdb")) {
            m_safe[inodeOf(m_path)] = readFile(m_path);
        }
        m_nameIsSafe = board.has("config.mdb");
        m_watching = true;
    }
    std::vector<Image> stop()
    {
        m_watching = false;
        return std::move(m_images);
    }
    /** Makes the calls whose step is so called fail. */
    void fail(const std::string& step, int error) { m_failures[step] = error; }

    /** Whether a call is to be made; if not, errno says why. */
    bool permits(const std::string& step)
    {
        const auto failure = m_failures.find(step);
        if (!m_watching || failure == m_failures.end()) {
            return true;
        }
        errno = failure->second;
        return false;
    }
    void wrote(int fd, const std::string& step, const std::string& data, off_t offset)
    {
        if (!m_watching) {
            return;
        }
        if ((::fcntl(fd, F_GETFL) & O_DSYNC) != 0) {
            std::string& safe = m_safe[inodeOf(fd)];
            safe.resize(std::max(safe.size(), static_cast<std::size_t>(offset) + data.size()));
            safe.replace(static_cast<std::size_t>(offset), data.size(), data);
        }
        takeImages(step);
    }
    void changed(const std::string& step)
    {
        if (m_watching) {
            takeImages(step);
        }
    }
    void synchronised(int fd, const std::string& step)
    {
        if (!m_watching) {
            return;
        }
        if (isDirectory(fd)) {
            m_nameIsSafe = true;
        } else {
            m_safe[inodeOf(fd)] = readFile("/proc/self/fd/" + std::to_string(fd));
        }
        takeImages(step);
    }
    static bool isDirectory(int fd)
    {
        struct stat status
        {};
        ::fstat(fd, &status);
        return S_ISDIR(status.st_mode);
    }

private:
    template <typename File> static ino_t inodeOf(const File& file)
    {
        struct stat status
        {};
        if constexpr (std::is_same_v<File, int>) {
            ::fstat(file, &status);
        } else {
            ::stat(file.c_str(), &status);
        }
        return status.st_ino;
    }

    /** What is left when only the process ends now, and what when the power goes. */
    void takeImages(const std::string& step)
    {
        if (!std::filesystem::exists(m_path)) {
            m_images.push_back({step, std::nullopt});
            return;
        }
        m_images.push_back({step + ", process ends", readFile(m_path)});
        m_images.push_back({step + ", power goes", m_safe[inodeOf(m_path)]});
        if (!m_nameIsSafe) {
            m_images.push_back({step + ", name is lost", std::nullopt});
        }
    }

    bool m_watching = false;
    std::string m_path;
    bool m_nameIsSafe = false;
    std::map<ino_t, std::string> m_safe; /**< What of each file outlives a power cut. */
    std::vector<Image> m_images;
    std::map<std::string, int> m_failures;
};

Disk disk;

const char* nameOfWrite(int fd)
{
    return (::fcntl(fd, F_GETFL) & O_DSYNC) != 0 ? "write through" : "write";
}

std::string bytesOf(const void* data, std::size_t size)
{
    return {static_cast<const char*>(data), size};
}

} // namespace

// The names with 64 are the ones of large files where those are not the default.
extern "C"
{
    ssize_t __real_pwrite(int fd, const void* data, size_t size, off_t offset);
    ssize_t __real_pwrite64(int fd, const void* data, size_t size, off64_t offset);
    ssize_t __real_writev(int fd, const iovec* pieces, int count);
    int __real_fdatasync(int fd);
    int __real_fsync(int fd);
    int __real_rename(const char* from, const char* to);
    int __real_ftruncate(int fd, off_t size);
    int __real_ftruncate64(int fd, off64_t size);

    ssize_t __wrap_pwrite(int fd, const void* data, size_t size, off_t offset);
    ssize_t __wrap_pwrite64(int fd, const void* data, size_t size, off64_t offset);
    ssize_t __wrap_writev(int fd, const iovec* pieces, int count);
    int __wrap_fdatasync(int fd);
    int __wrap_fsync(int fd);
    int __wrap_rename(const char* from, const char* to);
    int __wrap_ftruncate(int fd, off_t size);
    int __wrap_ftruncate64(int fd, off64_t size);
}

ssize_t __wrap_pwrite64(int fd, const void* data, size_t size, off64_t offset)
{
    const std::string step = nameOfWrite(fd);
    if (!disk.permits(step)) {
        return -1;
    }
    const ssize_t result = __real_pwrite64(fd, data, size, offset);
    disk.wrote(fd, step, bytesOf(data, size), static_cast<off_t>(offset));
    return result;
}

ssize_t __wrap_pwrite(int fd, const void* data, size_t size, off_t offset)
{
    return __wrap_pwrite64(fd, data, size, offset);
}

ssize_t __wrap_writev(int fd, const iovec* pieces, int count)
{
    if (!disk.permits("write")) {
        return -1;
    }
    const ssize_t result = __real_writev(fd, pieces, count);
    disk.changed("write");
    return result;
}

int __wrap_fdatasync(int fd)
{
    if (!disk.permits("sync")) {
        return -1;
    }
    const int result = __real_fdatasync(fd);
    disk.synchronised(fd, "sync");
    return result;
}

int __wrap_fsync(int fd)
{
    const std::string step = Disk::isDirectory(fd) ? "sync directory" : "sync all";
    if (!disk.permits(step)) {
        return -1;
    }
    const int result = __real_fsync(fd);
    disk.synchronised(fd, step);
    return result;
}

int __wrap_rename(const char* from, const char* to)
{
    if (!disk.permits("rename")) {
        return -1;
    }
    const int result = __real_rename(from, to);
    disk.changed("rename");
    return result;
}

int __wrap_ftruncate64(int fd, off64_t size)
{
    if (!disk.permits("resize")) {
        return -1;
    }
    const int result = __real_ftruncate64(fd, size);
    disk.changed("resize");
    return result;
}

int __wrap_ftruncate(int fd, off_t size)
{
    return __wrap_ftruncate64(fd, size);
}

namespace
{

class ConfigPowerCut : public testing::Test
{
protected:
    /** What the key has on a board with that store. */
    static std::string valueIn(const std::optional<std::string>& store)
    {
        const Board copy;
        if (store) {
            copy.write("config.mdb", *store);
        }
        return NxuConfig().get("key");
    }

    /** Does the work; the images that its steps left. */
    template <typename Work> std::vector<Image> imagesOf(const Work& work)
    {
        disk.watch(board);
        EXPECT_TRUE(work());
        return disk.stop();
    }

    static std::vector<std::string> stepsOf(const std::vector<Image>& images)
    {
        std::vector<std::string> steps;
        for (const Image& image : images) {
            steps.push_back(image.step);
        }
        return steps;
    }

    /** Every image has the old value until one has the new, and the last step leaves the new. */
    static void expectOldOrNew(const std::vector<Image>& images, const std::string& before,
                               const std::string& after)
    {
        ASSERT_GT(images.size(), 2U);
        for (const Image& image : images) {
            const std::string value = valueIn(image.store);
            EXPECT_TRUE(value == before || value == after) << image.step << ": " << value;
        }
        EXPECT_EQ(valueIn(images[images.size() - 1].store), after);
        EXPECT_EQ(valueIn(images[images.size() - 2].store), after);
    }

    std::vector<std::string> entries() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(board.path())) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    Board board;
    NxuConfig config;
};

TEST_F(ConfigPowerCut, LeavesTheOldOrTheNewValue)
{
    EXPECT_TRUE(config.set("key", "first"));
    EXPECT_TRUE(config.set("key", "old"));
    const auto images = imagesOf([&] { return config.set("key", "new"); });
    EXPECT_THAT(stepsOf(images), Contains("write, power goes"));
    expectOldOrNew(images, "old", "new");
}

TEST_F(ConfigPowerCut, LeavesALargeValueWholeOrNotAtAll)
{
    const std::string before(30000, 'a');
    const std::string after(50000, 'b');
    EXPECT_TRUE(config.set("key", before));
    expectOldOrNew(imagesOf([&] { return config.set("key", after); }), before, after);
}

TEST_F(ConfigPowerCut, LeavesAKeyThatIsClearedOrNot)
{
    EXPECT_TRUE(config.set("key", "old"));
    expectOldOrNew(imagesOf([&] { return config.clear("key"); }), "old", "");
}

TEST_F(ConfigPowerCut, LeavesAWholeNewStoreOrNone)
{
    const auto images = imagesOf([&] { return config.set("key", "new"); });
    EXPECT_THAT(stepsOf(images), Contains("rename, name is lost"));
    expectOldOrNew(images, "", "new");
}

TEST_F(ConfigPowerCut, LeavesTheOldOrTheNewOfManyValues)
{
    for (int i = 0; i < 8; ++i) {
        const std::string before = config.get("key");
        const std::string after(static_cast<std::size_t>(i * 1000),
                                static_cast<char>('a' + i % 26));
        disk.watch(board);
        EXPECT_TRUE(config.set("key", after));
        for (const Image& image : disk.stop()) {
            const std::string value = valueIn(image.store);
            EXPECT_TRUE(value == before || value == after) << i << ' ' << image.step;
        }
        ::setenv("BSP_BOARD_DIR", board.path().c_str(), 1);
    }
}

TEST_F(ConfigPowerCut, IsLikeAWriteThatFails)
{
    EXPECT_TRUE(config.set("key", "old"));
    for (const char* step : {"write", "sync", "write through"}) {
        disk.fail(step, EIO);
        disk.watch(board);
        EXPECT_FALSE(config.set("key", "new")) << step;
        EXPECT_FALSE(config.clear("key")) << step;
        disk.stop();
        EXPECT_EQ(config.get("key"), "old") << step;
    }
    EXPECT_TRUE(config.set("key", "new"));
    EXPECT_EQ(config.get("key"), "new");
}

class FailingCreation : public ConfigPowerCut, public testing::WithParamInterface<const char*>
{};

TEST_P(FailingCreation, LeavesNothing)
{
    disk.fail(GetParam(), EIO);
    disk.watch(board);
    EXPECT_FALSE(config.set("key", "value"));
    disk.stop();
    EXPECT_THAT(entries(), IsEmpty());
    EXPECT_EQ(config.get("key"), "");
    EXPECT_TRUE(config.set("key", "value"));
    EXPECT_THAT(entries(), ElementsAre("config.mdb"));
}

INSTANTIATE_TEST_SUITE_P(Steps, FailingCreation,
                         testing::Values("resize", "write", "sync", "write through", "sync all",
                                         "rename", "sync directory"));

TEST_F(ConfigPowerCut, IsNoConcernOfADirectoryThatCannotBeSynchronised)
{
    disk.fail("sync directory", EINVAL);
    disk.watch(board);
    EXPECT_TRUE(config.set("key", "value"));
    disk.stop();
    EXPECT_EQ(config.get("key"), "value");
}

} // namespace
