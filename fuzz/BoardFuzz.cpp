/**
 * @file
 * @brief Fuzzes boards: the EEPROM's code, the reset register, the settings, as files of a board
 * directory that the stand-ins serve. Each is asked in a process of its own.
 */
#include "Bsp.h"
#include "Child.h"
#include "DDevIo.h"
#include "Expect.h"
#include "KeptTrace.h"
#include "models/SettingsModel.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

using Messages = std::vector<std::string>;

const std::string Directory = "/tmp/fuzz-board";
const std::string Marker = "/tmp/restart_cold";

/** The entries of the board directory; each is there or not. */
struct Board
{
    std::optional<std::string> eeprom;
    bool isEepromFolder = false;
    std::optional<std::string> registers;
    std::optional<std::string> settings;
    bool isMarked = false;
};

void write(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

void build(const Board& board)
{
    std::filesystem::remove_all(Directory);
    std::filesystem::create_directory(Directory);
    if (board.isEepromFolder) {
        std::filesystem::create_directory(Directory + "/eeprom");
    } else if (board.eeprom) {
        write(Directory + "/eeprom", *board.eeprom);
    }
    if (board.registers) {
        write(Directory + "/top.sys_ctrl0", *board.registers);
    }
    if (board.settings) {
        write(Directory + "/settings", *board.settings);
    }
    std::filesystem::remove(Marker);
    if (board.isMarked) {
        write(Marker, "");
    }
}

/** All questions, one answer a line, and then the messages. */
std::string ask()
{
    std::string text;
    const auto add = [&](const std::string& name, long value) {
        text += name + ' ' + std::to_string(value) + '\n';
    };
    add("product", Bsp_getProductId());
    add("revision", Bsp_getHwRevision());
    add("board id", Bsp_getBoardId());
    text += std::string("board text ") + Bsp_getBoardIdText() + '\n';
    text += std::string("latest text ") + Bsp_getLatestBoardIdText() + '\n';
    add("dsp", Bsp_getDspType());
    add("platform", Bsp_getPlatformType());
    add("traffic backplane", Bsp_getTrafficBackplane());
    add("control backplane", Bsp_getControlBackplane());
    add("radio links", Bsp_getNumberOfRlt());
    add("channels", static_cast<long>(Bsp_getNumberOfChannels()));
    add("switch", Bsp_getSwitchType());
    add("reset", static_cast<long>(os::bsp::getResetType()));
    text += "reset text " + os::bsp::resetTypeToString(os::bsp::getResetType()) + '\n';
    try {
        add("fpga", Bsp_getTrafFpgaType());
        add("mode", Bsp_getRadiolinkMode());
    } catch (const std::runtime_error& error) {
        text += std::string("threw ") + error.what() + '\n';
    }
    for (const std::string& message : fuzz::takeMessages()) {
        // Those of the stand-in are not the layer's.
        if (message.find("the settings are those of") == std::string::npos) {
            text += message + '\n';
        }
    }
    return text;
}

/** What the answers have to be. */
class Model
{
public:
    explicit Model(const Board& board) : m_board(board) {}

    std::string answers()
    {
        readCode();
        const int product = productId();
        add("product", product);
        add("revision", m_variant->hwRevision);
        productId();
        const int boardId = product * 65536 + m_variant->hwRevision;
        add("board id", boardId);
        productId();
        // None of the products that the table of variants knows has a text.
        m_answers += "board text Unknown board revision\n";
        productId();
        m_answers += "latest text Unknown board revision\n";
        words();
        channels();
        say(6, "ENTER getSwitchType()");
        add("switch", 0);
        reset(product);
        store();
        return m_answers + fuzz::joined(m_messages);
    }

private:
    void add(const std::string& name, long value)
    {
        m_answers += name + ' ' + std::to_string(value) + '\n';
    }
    void say(int level, const std::string& text)
    {
        m_messages.push_back(std::to_string(level) + ' ' + text);
    }

    void readCode()
    {
        const os::bsp::NxuHwVariant& standard = os::bsp::hwVariants[14];
        std::memcpy(m_code.data(), standard.code.word, sizeof m_code);
        int error = 0;
        if (m_board.isEepromFolder) {
            error = EISDIR;
        } else if (!m_board.eeprom) {
            error = ENOENT;
        } else if (m_board.eeprom->size() < m_code.size()) {
            error = EIO;
        }
        if (error != 0) {
            say(1, "operator()(): e2prom_data_read() failed. Returned " + std::to_string(error));
        } else {
            for (std::size_t i = 0; i < m_code.size(); ++i) {
                m_code.at(i) = static_cast<unsigned char>((*m_board.eeprom)[i]);
            }
        }
        for (const os::bsp::NxuHwVariant& variant : os::bsp::hwVariants) {
            if (std::memcmp(variant.code.word, m_code.data(), sizeof m_code) == 0) {
                m_variant = &variant;
                return;
            }
        }
        say(1, "operator()(): Invalid hardware variant");
        m_variant = os::bsp::hwVariants.data();
    }

    int productId()
    {
        constexpr std::array<int, 15> Products{18, 5,  6, 7,  10, 11, 13, 8,
                                               18, 12, 9, 14, 15, 16, 17};
        return Products.at(static_cast<std::size_t>(m_variant->productCode));
    }

    /** An answer by a word of the code; what is not known is a message with the variant's word. */
    long byWord(std::size_t word, const std::vector<long>& values, const std::string& complaint,
                bool quotesCode = false)
    {
        const auto value = static_cast<std::size_t>(m_code.at(word));
        const long last = values.back();
        if (value + 1 < values.size() && values[value] >= 0) {
            return values[value];
        }
        say(1,
            complaint + std::to_string(quotesCode ? m_code.at(word) : m_variant->code.word[word]));
        return last;
    }

    void words()
    {
        say(6, "ENTER getDspType()");
        add("dsp", byWord(5, {4, -1, 5, -1, 6, 7}, "getDspType(): Unknown dspType: "));
        add("platform", byWord(1, {1, 2, 3}, "getPlatformType(): Unknown platformType: "));
        add("traffic backplane", byWord(3, {1, -1, -1, 2, 2, 2, 2, 2, 2, 3},
                                        "getTrafficBackplane(): Unknown backplaneType: "));
        add("control backplane",
            byWord(2, {1, 2, 3, 4}, "getControlBackplane(): Unknown backplaneType: "));
        say(6, "ENTER getNumberOfRadiolinks()");
        add("radio links", byWord(3, {2, -1, -1, 2, 1, 2, 2, 1, 2, 2},
                                  "getNumberOfRadiolinks(): Unknown traf type: ", true));
    }

    void channels()
    {
        constexpr std::array<long, 18> Channels{1, 1, 1, 1, 1, 2, 1, 2, 1,
                                                2, 2, 2, 1, 2, 2, 1, 2, 1};
        say(6, "ENTER getNumberOfChannels()");
        const long count = Channels.at(static_cast<std::size_t>(productId()));
        say(7, "getNumberOfChannels(): numberOfChannels = " + std::to_string(count));
        add("channels", count);
    }

    /** Asked for twice, and unknown ones are worked out each time. */
    void reset(int product)
    {
        int type = product == 14 && !m_board.isMarked ? 1 : 0;
        if (m_code[1] == 0) {
            type = 3;
            if (m_board.registers && m_board.registers->size() >= sizeof type) {
                std::memcpy(&type, m_board.registers->data(), sizeof type);
            }
        }
        const bool isKnownPlatform = m_code[1] <= 1;
        const std::string complaint =
            "getPlatformType(): Unknown platformType: " + std::to_string(m_variant->code.word[1]);
        for (int asked = 0; !isKnownPlatform && asked < 1; ++asked) {
            say(1, complaint);
        }
        add("reset", type);
        const Messages names{"Cold", "Warm", "Watchdog", "Unknown"};
        m_answers += "reset text " +
                     (type >= 0 && type < 4 ? names[static_cast<std::size_t>(type)] : "EndOfList") +
                     '\n';
    }

    void store()
    {
        const auto settings = fuzz::SettingsModel::ofText(m_board.settings.value_or(""));
        const bool isRead = m_code[3] == 0 || m_code[3] == 3 || m_code[3] == 5 || m_code[3] == 8;
        if (isRead && !settings.error.empty()) {
            refuse(settings.error);
            return;
        }
        auto entries = settings.entries();
        const std::string variant = entries["FpgaVariant"];
        const bool isTwo = variant == "TwoTdm";
        const bool isOne = variant == "OneTdmRleEqpNoMlhc";
        add("fpga", byWord(3,
                           {isTwo ? 7 : 6, -1, -1, isOne ? 13 : 12, 14, isTwo ? 16 : 15, 17, 18,
                            isTwo ? 20 : 19, 23},
                           "getTrafFpgaType(): Not supported traffic FPGA: "));
        if (!settings.error.empty()) {
            refuse(settings.error);
            return;
        }
        add("mode", entries["RadiolinkMode"] == "Rl5" ? 1 : 0);
    }

    void refuse(const std::string& error)
    {
        m_answers +=
            "threw cannot read the configuration store " + Directory + "/settings: " + error + '\n';
    }

    const Board& m_board;
    std::array<std::int32_t, 8> m_code{};
    const os::bsp::NxuHwVariant* m_variant = nullptr;
    std::string m_answers;
    Messages m_messages;
};

Board anyBoard(FuzzedDataProvider& input)
{
    Board board;
    const int eeprom = input.ConsumeIntegralInRange<int>(0, 15);
    board.isEepromFolder = eeprom == 0;
    if (eeprom > 1) {
        // A known code, with one byte changed or none, or any bytes.
        const auto row = input.ConsumeIntegralInRange<std::size_t>(0, os::bsp::hwVariants.size());
        std::string code =
            input.ConsumeBytesAsString(input.ConsumeIntegralInRange<std::size_t>(0, 9));
        if (row < os::bsp::hwVariants.size()) {
            const auto& words = os::bsp::hwVariants[row].code.word;
            code.assign(std::begin(words), std::end(words));
            const auto changed = input.ConsumeIntegralInRange<std::size_t>(0, 15);
            if (changed < code.size()) {
                code[changed] = input.ConsumeIntegral<char>();
            }
        }
        board.eeprom = code;
    }
    if (input.ConsumeBool()) {
        board.registers =
            input.ConsumeBytesAsString(input.ConsumeIntegralInRange<std::size_t>(0, 5));
        if (board.registers->size() == 4 && input.ConsumeBool()) {
            *board.registers = std::string(1, input.PickValueInArray({'\0', '\1', '\2', '\3'})) +
                               std::string(3, '\0');
        }
    }
    board.isMarked = input.ConsumeBool();
    if (input.ConsumeBool()) {
        board.settings = input.ConsumeRandomLengthString(60);
        const int known = input.ConsumeIntegralInRange<int>(0, 3);
        if (known > 0) {
            *board.settings +=
                known == 1 ? "\nFpgaVariant=TwoTdm" : "\nFpgaVariant=OneTdmRleEqpNoMlhc";
            *board.settings += "\nRadiolinkMode = Rl5\n";
        }
    }
    return board;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    return ::setenv("BSP_BOARD_DIR", Directory.c_str(), 1);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const Board board = anyBoard(input);
    build(board);
    fuzz::expectEqual("the answers", fuzz::inChild(ask).answer, Model(board).answers());
    return 0;
}
