#include "DiagTest.h"

#include <chrono>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* KernelImage = "/dev/shm/zImage_tmp";

class KernelImageFile : public DiagTest
{
protected:
    /** Nobody takes so long to lock a file that he has made. */
    static void waitSomeSeconds() { std::this_thread::sleep_for(std::chrono::seconds(3)); }
};

TEST_F(KernelImageFile, IsNamedWhenItWasLeftBehind)
{
    if (const std::string reason = noOtherUser(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    testsupport::writeFile(KernelImage, "image");
    waitSomeSeconds();
    EXPECT_THAT(findings(),
                ElementsAre("kernel-image-left: the temporary image of a kernel query was left "
                            "behind. Evidence: /dev/shm/zImage_tmp, " +
                            Names +
                            ", 5 bytes, locked by nobody. Follows: it takes memory; the next query "
                            "of its user, or of root, removes it. Cure: bsp-diag repair --yes "
                            "zImage_tmp"));
    EXPECT_THAT(namesIn(findings(diagOfOrdinaryUser({"check"}))),
                testing::IsSupersetOf({"kernel-image-left", "kernel-image-foreign"}));
}

TEST_F(KernelImageFile, IsNoFindingWhileAQueryWorksOnItUnlessThatTakesLong)
{
    testsupport::writeFile(KernelImage, "image");
    const int fd = ::open(KernelImage, O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(fd, LOCK_EX), 0);
    waitSomeSeconds();
    EXPECT_THAT(findings(), IsEmpty());
    const testsupport::Outcome outcome = diag({"repair", "--yes", "zImage_tmp"}).run();
    EXPECT_THAT(normal(outcome.out),
                testing::StartsWith("zImage_tmp: kept, used by PROCESS (N, since "));
    EXPECT_EQ(outcome.status, 1);

    // No query works as long on it.
    std::this_thread::sleep_for(std::chrono::seconds(9));
    const Words lines = findings();
    ASSERT_THAT(namesIn(lines), ElementsAre("kernel-image-held"));
    EXPECT_THAT(lines.at(0),
                testing::MatchesRegex(
                    "kernel-image-held: the temporary image of a kernel query has been held for "
                    "long. Evidence: /dev/shm/zImage_tmp, " +
                    Names +
                    ", unchanged for [0-9]+ s, locked by PROCESS .N, since TIME.. Follows: other "
                    "kernel queries wait for ten seconds, and then remove it or fail. Cure: end "
                    "PROCESS .N, since TIME."));
    ::close(fd);
}

TEST_F(KernelImageFile, IsNamedWhenItIsALink)
{
    fs::create_symlink("/etc/passwd", KernelImage);
    const Words lines = findings();
    EXPECT_THAT(namesIn(lines), ElementsAre("kernel-image-link"));
    EXPECT_THAT(lines.at(0), HasSubstr(Names + " is a symbolic link. Follows: getKernelRState "
                                               "fails for everybody (-1, \"Unknown r-state\"). "
                                               "Cure: remove /dev/shm/zImage_tmp"));
}

} // namespace
