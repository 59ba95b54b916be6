#include "FirmwareImages.h"
#include "RealImages.h"
#include "RecordingTrace.h"
#include "UbootQuery.h"

#include <gmock/gmock.h>

#include <cstring>

namespace uboot
{

namespace
{

using namespace firmware;
using recordingtrace::takeLines;
using namespace testing;
using namespace testsupport;

const std::string parsing = "bsp.core 6 Bsp_getUbootProductInfo(): Start parsing for u-boot "
                            "strings:";

TEST(UbootProductInfo, TracesAllStepsOnARealBootLoader)
{
    EXPECT_EQ(askFile(realBootLoader), (Answer{0, "PN-4402/17", "R2B"}));
    EXPECT_EQ(takeLines(), courseOfRealBootLoader());
}

TEST(UbootProductInfo, IsWhatStandsBehindTheLabels)
{
    struct Case
    {
        std::string image;
        std::string productNumber;
        std::string rstate;
    };
    const std::vector<Case> cases{
        {"Product number: PN-0001\nR-state: R2B\n", "PN-0001", "R2B"},
        {"R-state: R2B\nProduct number: PN-0001\n", "PN-0001", "R2B"},
        {noise(100000) + "R-state: R2B\n" + noise(9000) + "Product number: PN-0001\n", "PN-0001",
         "R2B"},
        // The end of the image, a NUL and a newline each end a value.
        {"Product number: PN-0001" + nul + "xR-state: R2B", "PN-0001", "R2B"},
        {"Product number: \nR-state: ", "", ""},
        {"Product number: " + nul + "R-state: \n", "", ""},
        // Everything else is part of it.
        {"Product number:   PN 1 \r\nR-state: \tR2B\r\n", "  PN 1 \r", "\tR2B\r"},
        {"Product number: \xC4\xFF\x01\nR-state: R-state: R1\n", "\xC4\xFF\x01", "R-state: R1"},
        {"Product number: R-state: R1", "R-state: R1", "R1"},
        // Labels that are none.
        {"Product number:PN-0001\nR-state:R2B\n", "Not found", "Not found"},
        {"product number: PN-0001\nr-state: R2B\n", "Not found", "Not found"},
        {"Product number" + nul + ": PN-0001\nR-state", "Not found", "Not found"},
        {"Product number: PN-0001\n", "PN-0001", "Not found"},
        {"R-state: R2B\n", "Not found", "R2B"},
        {noise(70000), "Not found", "Not found"},
        {"", "Not found", "Not found"},
        // The first of several.
        {"R-state: R1\nProduct number: A\nR-state: R2\nProduct number: B\n", "A", "R1"},
        // A label may follow its own beginning.
        {"ProdProduct number: PN-1\nR-R-state: R1\n", "PN-1", "R1"},
        {"Product numberProduct number: PN-1\nR-stateR-state: R1\n", "PN-1", "R1"},
        {"PPProduct number: PN-1\nRRR-state: R1\n", "PN-1", "R1"},
        {nul + nul + "Product number: PN-1" + nul + nul + "R-state: R1" + nul, "PN-1", "R1"},
    };
    for (const auto& [image, productNumber, rstate] : cases) {
        EXPECT_EQ(ask(image), (Answer{0, productNumber, rstate})) << image.substr(0, 100);
        EXPECT_THAT(takeLines(1), IsEmpty());
    }
}

TEST(UbootProductInfo, TracesAMissingLabelByItsValueAlone)
{
    EXPECT_EQ(ask("x"), (Answer{0, "Not found", "Not found"}));
    EXPECT_THAT(takeLines(),
                ElementsAre("bsp.core 7 Bsp_readHelper(): Read 1 bytes", parsing,
                            "bsp.core 5 Bsp_getUbootProductInfo(): Product number = Not found",
                            "bsp.core 5 Bsp_getUbootProductInfo(): R-state = Not found"));
}

TEST(UbootProductInfo, IsCutToItsRoom)
{
    const std::string image = "Product number: PN-0001\nR-state: R2B05\n";
    EXPECT_EQ(ask(image, 8, 6), (Answer{0, "PN-0001", "R2B05"}));
    EXPECT_EQ(ask(image, 7, 5), (Answer{0, "PN-000", "R2B0"}));
    EXPECT_EQ(ask(image, 1, 2), (Answer{0, "", "R"}));
    EXPECT_EQ(ask("", 10, 4), (Answer{0, "Not found", "Not"}));
    EXPECT_EQ(ask("", 9, 1), (Answer{0, "Not foun", ""}));
    const std::string longValue(200, 'v');
    EXPECT_EQ(ask("Product number: " + longValue + "\nR-state: " + longValue),
              (Answer{0, longValue.substr(0, 79), longValue.substr(0, 79)}));
}

TEST(UbootProductInfo, IsPaddedWithNulsAndStaysWithinItsRoom)
{
    const TemporaryDirectory directory;
    writeFile(directory.file("u-boot"), "Product number: PN\nmore than there is room for");
    char productNumber[13];
    char rstate[13];
    std::memset(productNumber, '#', sizeof productNumber);
    std::memset(rstate, '#', sizeof rstate);
    EXPECT_EQ(
        Bsp_getUbootProductInfo(directory.file("u-boot").c_str(), productNumber, 12, rstate, 12),
        0);
    EXPECT_EQ(std::string(productNumber, 3), "PN" + nul);
    EXPECT_EQ(productNumber[11], '\0');
    EXPECT_EQ(productNumber[12], '#');
    EXPECT_EQ(std::string(rstate, 13), "Not found" + nul + nul + nul + '#');
}

} // namespace

} // namespace uboot
