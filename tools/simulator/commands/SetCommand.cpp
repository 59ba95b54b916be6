#include "commands/Commands.h"

#include "BoardDirectory.h"
#include "Bsp.h"
#include "NxuConfig.h"
#include "WarmLayout.h"
#include "board/Board.h"
#include "board/BoardAccess.h"
#include "report/Failure.h"
#include "running/CommandRunner.h"
#include "running/Run.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <memory>

#include <unistd.h>

namespace
{

namespace key = os::bsp::key;
namespace value = os::bsp::value;

constexpr const char* SlotKey = "slot";
/** What this program calls itself for on the board, where the slot id can be set. */
constexpr const char* SetSlotHere = "set-slot-here";

struct SetArguments
{
    std::string directory;
    std::string key;
    std::string value;
    bool clear = false;
    bool any = false;
    bool trustOthers = false;
};

struct Setting
{
    std::string key;
    std::vector<std::string> values;
};

std::vector<Setting> knownSettings()
{
    return {
        {key::RadiolinkMode, {value::radiolinkMode::Rl4, value::radiolinkMode::Rl5}},
        {key::FpgaVariant, {value::fpgaVariant::TwoTdm, value::fpgaVariant::OneTdmRleEqpNoMlhc}}};
}

/** "a", "a or b", "a, b or c" */
std::string listed(const std::vector<std::string>& words)
{
    std::string text = words.front();
    for (std::size_t i = 1; i < words.size(); ++i) {
        text += (i + 1 == words.size() ? " or " : ", ") + words[i];
    }
    return text;
}

Setting knownSetting(const std::string& name)
{
    const std::vector<Setting> settings = knownSettings();
    std::vector<std::string> names{SlotKey};
    for (const Setting& setting : settings) {
        if (setting.key == name) {
            return setting;
        }
        names.push_back(setting.key);
    }
    throw UsageError("there is no setting '" + name + "'; it can be " + listed(names) +
                     ", or with --any any other");
}

void requireKnown(const SetArguments& options)
{
    const Setting setting = knownSetting(options.key);
    const std::vector<std::string>& values = setting.values;
    if (!options.clear && std::find(values.begin(), values.end(), options.value) == values.end()) {
        throw UsageError("'" + options.value + "' is no value of " + setting.key + "; it can be " +
                         listed(values) + ", or with --any any other");
    }
}

int parsedSlotId(const std::string& text)
{
    int slotId = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, slotId);
    if (result.ec != std::errc() || result.ptr != end) {
        throw UsageError("'" + text + "' is no slot id, which is a whole number of 32 bits");
    }
    return slotId;
}

Directory openBoardToSet(const SetArguments& options, Use use)
{
    Directory board = openBoard(options.directory,
                                options.trustOthers ? OtherUsers::Trusted : OtherUsers::Refused);
    requireBoard(board);
    hold(board, use);
    return board;
}

/** The slot id is in memory that programs share, so a program on the board sets it. */
int setSlotId(const SetArguments& options)
{
    const int slotId = options.clear ? os::bsp::dtcm::SlotIdNotSet : parsedSlotId(options.value);
    // Like any program on the board it may have to wait there; only a restart would disturb it.
    const Directory board = openBoardToSet(options, Use::Shared);
    const int status = runOnBoard(Board::at(board.name()),
                                  {ownProgram(), SetSlotHere, "--", std::to_string(slotId)});
    return status == EXIT_SUCCESS ? EXIT_SUCCESS : EXIT_FAILURE;
}

void changeSetting(const SetArguments& options)
{
    if (!options.any) {
        requireKnown(options);
    }
    const Directory board = openBoardToSet(options, Use::Exclusive);
    // The store is found from here, whatever others put into the board's place meanwhile.
    if (::fchdir(board.fd()) != 0) {
        throw Failure("cannot use '" + board.name().string() + "'", errno);
    }
    ::setenv(boarddirectory::Variable, ".", 1); // NOLINT(concurrency-mt-unsafe): one thread
    os::bsp::NxuConfig store;
    if (!(options.clear ? store.clear(options.key) : store.set(options.key, options.value))) {
        throw Failure("the store of '" + board.name().string() + "' does not take '" + options.key +
                      "'");
    }
}

int set(const SetArguments& options, bool hasValue)
{
    if (options.clear == hasValue) {
        throw UsageError(hasValue ? "VALUE and --clear cannot be given together"
                                  : "VALUE is required");
    }
    if (options.key == SlotKey) {
        return setSlotId(options);
    }
    changeSetting(options);
    return 0;
}

void setSlotHere(int slotId)
{
    Bsp_setSlotId(slotId);
    if (Bsp_getSlotId() != slotId) {
        throw Failure("the board's warm area does not take a slot id");
    }
}

/** Not for users: it would set the slot id of whatever board it is on. */
void addSetSlotHere(CLI::App& app)
{
    CLI::App* const command = app.add_subcommand(SetSlotHere, "")->group("");
    const auto slotId = std::make_shared<std::string>();
    command->add_option("ID", *slotId, "")->required();
    command->callback([slotId] { setSlotHere(parsedSlotId(*slotId)); });
}

} // namespace

void addSetCommand(CLI::App& app, int& status)
{
    CLI::App* const command =
        app.add_subcommand("set", "Set a board's slot id or a setting in its store");
    const auto options = std::make_shared<SetArguments>();
    command->add_option("DIR", options->directory, "The board's directory")->required();
    command->add_option("KEY", options->key, "slot, RadiolinkMode or FpgaVariant")->required();
    command->add_option("VALUE", options->value, "The value it gets");
    command->add_flag("--clear", options->clear, "Leave it without a value");
    command->add_flag("--any", options->any, "Take keys and values that the layer does not know");
    command->add_flag(TrustOption, options->trustOthers, TrustOptionHelp);
    command->callback(
        [command, options, &status] { status = set(*options, command->count("VALUE") != 0); });
    addSetSlotHere(app);
}
