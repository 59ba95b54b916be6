#include "NxuHwVariant.h"
#include "SimulatorTest.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <map>

#include <sys/resource.h>
#include <sys/stat.h>

namespace
{

namespace fs = std::filesystem;
using os::bsp::hwVariants;
using os::bsp::NxuHwVariant;
using namespace testing;

class Create : public SimulatorTest
{
protected:
    mode_t mode(const std::string& name) const
    {
        struct stat status = {};
        EXPECT_EQ(::stat(file(name).c_str(), &status), 0);
        return status.st_mode & 07777U;
    }
};

/** The products by the codes that the variants have for them. */
const std::map<int, std::string> products{
    {1, "NXU4A"},    {2, "NXU2001"},  {3, "NXU2002"},  {4, "KT4851_1"}, {5, "KT4851_2"},
    {6, "KT4766"},   {7, "DWB2001"},  {9, "KT4851_3"}, {10, "DWB2002"}, {11, "KT4851_4"},
    {12, "NXU2003"}, {13, "NXU2004"}, {14, "DWB2003"},
};

std::string bytesOf(const NxuHwVariant& variant)
{
    std::string bytes;
    for (const std::int32_t value : variant.code.word) {
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

TEST_F(Create, MakesAllThatABoardHas)
{
    expectQuiet({"create", "b"});
    EXPECT_THAT(entries("."), ElementsAre("b"));
    EXPECT_THAT(entries("b"),
                ElementsAre("eeprom", "leds", "shm", "tmp", "top.dtcm0", "top.sys_ctrl0"));
    EXPECT_EQ(contents("b/eeprom").size(), 8U);
    EXPECT_EQ(contents("b/top.dtcm0").size(), 32768U);
    EXPECT_EQ(contents("b/top.sys_ctrl0"), std::string(4096, '\0'));
    EXPECT_THAT(entries("b/shm"), IsEmpty());
    EXPECT_THAT(entries("b/tmp"), ElementsAre("restart_cold"));
    EXPECT_THAT(entries("b/leds"), ElementsAre("green", "red", "yellow"));
    for (const std::string led : {"b/leds/green", "b/leds/red", "b/leds/yellow"}) {
        EXPECT_THAT(entries(led), ElementsAre("korvanta_state", "trigger"));
        EXPECT_EQ(contents(led + "/korvanta_state"), "steady_off\n");
        EXPECT_EQ(contents(led + "/trigger"), "none [korvanta]\n");
    }
}

TEST_F(Create, FillsTheMemoryWithAnything)
{
    expectQuiet({"create", "a"});
    expectQuiet({"create", "b"});
    const std::string memory = contents("a/top.dtcm0");
    EXPECT_NE(memory, contents("b/top.dtcm0"));
    for (int byte = 0; byte < 256; ++byte) {
        EXPECT_NE(memory.find(static_cast<char>(byte)), std::string::npos) << byte;
    }
}

TEST_F(Create, LetsEverybodyUseTheSharedDirectoriesWhateverTheUmask)
{
    EXPECT_EQ(prepared(boardTool({"create", "b"}), [] { ::umask(077); }).run().status, 0);
    EXPECT_EQ(mode("b/shm"), 01777U);
    EXPECT_EQ(mode("b/tmp"), 01777U);
    EXPECT_EQ(mode("b"), 0700U);
    EXPECT_EQ(mode("b/eeprom"), 0600U);
}

TEST_F(Create, TakesTheDefaultVariant)
{
    expectQuiet({"create", "b"});
    EXPECT_EQ(contents("b/eeprom"), bytesOf(hwVariants.at(14)));
}

TEST_F(Create, TakesAnyVariant)
{
    for (std::size_t index = 0; index < hwVariants.size(); ++index) {
        const std::string number = std::to_string(index);
        expectQuiet({"create", number, "--variant", number});
        EXPECT_EQ(contents(number + "/eeprom"), bytesOf(hwVariants[index]));
    }
}

TEST_F(Create, TakesTheFirstVariantOfAProduct)
{
    for (const auto& [code, product] : products) {
        const auto first =
            std::find_if(hwVariants.begin(), hwVariants.end(),
                         [wanted = code](const auto& row) { return row.productCode == wanted; });
        ASSERT_NE(first, hwVariants.end()) << product;
        expectQuiet({"create", product, "--product", product});
        EXPECT_EQ(contents(product + "/eeprom"), bytesOf(*first)) << product;
    }
}

TEST_F(Create, TakesAnyCode)
{
    expectQuiet({"create", "b", "--code", "00112233fedcBA98"});
    EXPECT_EQ(contents("b/eeprom"), std::string("\x00\x11\x22\x33\xFE\xDC\xBA\x98", 8));
}

TEST_F(Create, TakesNoPlaceThatIsNotCalledByItsName)
{
    std::filesystem::create_directory(file("empty"));
    for (const std::string place : {".", "empty/.", "empty/..", "/"}) {
        expectRefusal({"create", place},
                      "cannot create '" + place + "': call the directory by its name");
    }
    EXPECT_THAT(everything(), ElementsAre("empty"));
}

TEST_F(Create, RefusesVariantsThatThereAreNot)
{
    for (const std::string& number :
         {std::to_string(hwVariants.size()), std::string("two"), std::string("1x"),
          std::string("99999999999999999999"), std::string("-1")})
    {
        expectMisuse({"create", "b", "--variant=" + number},
                     "there is no hardware variant '" + number +
                         "'; 'bsp-board variants' lists them");
    }
    EXPECT_THAT(everything(), IsEmpty());
}

TEST_F(Create, RefusesProductsWithoutAVariant)
{
    for (const std::string product : {"KT4754", "nxu4a", "EndOfList", ""}) {
        expectMisuse({"create", "b", "--product", product},
                     "no hardware variant is of product '" + product +
                         "'; 'bsp-board variants' lists them");
    }
    EXPECT_THAT(everything(), IsEmpty());
}

TEST_F(Create, RefusesWhatIsNoCode)
{
    for (const std::string code : {"", "00112233445566", "001122334455667788", "00112233445566xx",
                                   "0x11223344556677", "+0112233445566-7", "00 1 2 3 4 5 6 7"})
    {
        expectMisuse({"create", "b", "--code", code},
                     "'" + code + "' is no hardware code, which has 16 hexadecimal digits");
    }
    EXPECT_THAT(everything(), IsEmpty());
}

TEST_F(Create, RefusesTwoChoicesAtOnce)
{
    expectMisuse({"create", "b", "--product", "NXU4A", "--variant", "0"},
                 "--product and --variant cannot be given together");
    expectMisuse({"create", "b", "--variant", "0", "--code", "0011223344556677"},
                 "--variant and --code cannot be given together");
    expectMisuse({"create", "b", "--code", "0011223344556677", "--product", "NXU4A"},
                 "--product and --code cannot be given together");
    EXPECT_THAT(everything(), IsEmpty());
}

TEST_F(Create, OverwritesNothing)
{
    fs::create_directories(file("full/empty"));
    write("file", "mine");
    fs::create_symlink("full/empty", file("link"));
    const std::vector<std::string> before = everything();
    for (const std::string name : {"full", "file", "link"}) {
        expectRefusal({"create", name}, "cannot create '" + name + "': File exists");
    }
    EXPECT_EQ(everything(), before);
}

TEST_F(Create, TakesAnEmptyDirectory)
{
    for (const std::string name : {"b", "c/"}) {
        fs::create_directory(file(name));
        fs::permissions(file(name), fs::perms::owner_all);
        expectQuiet({"create", name});
        EXPECT_EQ(contents(name + "/eeprom"), bytesOf(hwVariants.at(14)));
        EXPECT_EQ(mode(name), 0700U);
    }
    EXPECT_THAT(entries("."), ElementsAre("b", "c"));
}

TEST_F(Create, RefusesToMakeABoardTwice)
{
    expectQuiet({"create", "b"});
    const std::vector<std::string> before = everything();
    expectRefusal({"create", "b"}, "cannot create 'b': File exists");
    EXPECT_EQ(everything(), before);
}

TEST_F(Create, WantsAPlaceForTheBoard)
{
    write("file", "");
    expectRefusal({"create", "no/b"}, "cannot create 'no/b': No such file or directory");
    expectRefusal({"create", "file/b"}, "cannot create 'file/b': Not a directory");
    expectRefusal({"create", ""}, "cannot create '': No such file or directory");
    EXPECT_THAT(entries("."), ElementsAre("file"));
}

TEST_F(Create, TakesAPathWithASlashAtItsEnd)
{
    expectQuiet({"create", "b/"});
    EXPECT_EQ(contents("b/eeprom"), bytesOf(hwVariants.at(14)));
}

TEST_F(Create, LeavesNothingBehindWhenItFails)
{
    testsupport::Program program = boardTool({"create", "b"});
    program.prepare = [] {
        constexpr rlimit smallFiles{1024, 1024};
        std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &smallFiles);
    };
    EXPECT_EQ(program.run(),
              testsupport::refusal("bsp-board: cannot write 'b/top.dtcm0': File too large\n"));
    EXPECT_THAT(everything(), IsEmpty());
}

TEST_F(Create, GivesAPlaceToOneOfManyAtOnce)
{
    std::vector<pid_t> processes;
    for (int i = 0; i < 8; ++i) {
        processes.push_back(
            prepared(boardTool({"create", "b"}), [] { std::fclose(stderr); }).start());
    }
    int made = 0;
    for (const pid_t process : processes) {
        made += testsupport::waitFor(process) == 0 ? 1 : 0;
    }
    EXPECT_EQ(made, 1);
    EXPECT_THAT(entries("."), ElementsAre("b"));
    EXPECT_EQ(contents("b/top.dtcm0").size(), 32768U);
}

class Variants : public SimulatorTest
{};

std::string lineOf(std::size_t index, const NxuHwVariant& variant)
{
    constexpr std::array<const char*, 7> revisions{"R1_P2", "R1_P3", "R1_P4", "R1_P5",
                                                   "R2_P1", "R2_P2", "XPIC"};
    std::array<char, 100> text{};
    std::snprintf(text.data(), text.size(), "%-5zu  %-8s  %-8s  ", index,
                  products.at(variant.productCode).c_str(),
                  revisions.at(static_cast<std::size_t>(variant.hwRevision)));
    std::string line = text.data();
    for (const std::int32_t value : variant.code.word) {
        std::snprintf(text.data(), text.size(), "%02x", static_cast<unsigned int>(value));
        line += text.data();
    }
    return line + '\n';
}

TEST_F(Variants, AreListed)
{
    std::string expected = "index  product   revision  hardware code\n";
    for (std::size_t index = 0; index < hwVariants.size(); ++index) {
        expected += lineOf(index, hwVariants[index]);
    }
    EXPECT_EQ(run({"variants"}), testsupport::answer(expected));
}

} // namespace
