#include "commands/Commands.h"

#include "Hardware.h"
#include "HardwareCode.h"
#include "Products.h"
#include "Text.h"
#include "board/BoardState.h"
#include "board/CapsuleBoard.h"
#include "board/Files.h"
#include "report/Failure.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <memory>

namespace
{

using os::bsp::hwVariants;

struct CreateArguments
{
    std::string directory;
    std::string product;
    std::string variant = std::to_string(hardware::DefaultVariant);
    std::string code;
    std::string capsule;
};

std::string codeOfVariant(const std::string& number)
{
    std::size_t index = 0;
    const char* const end = number.data() + number.size();
    const auto result = std::from_chars(number.data(), end, index);
    if (result.ec != std::errc() || result.ptr != end || index >= hwVariants.size()) {
        throw UsageError("there is no hardware variant '" + number +
                         "'; 'bsp-board variants' lists them");
    }
    return hardwarecode::bytesOf(hwVariants[index].code);
}

std::string codeOfProduct(const std::string& product)
{
    const auto found = std::find_if(
        hwVariants.begin(), hwVariants.end(), [&](const os::bsp::NxuHwVariant& variant) {
            const os::bsp::ProductId id = os::bsp::productOf(variant.productCode);
            return id != os::bsp::ProductId::EndOfList &&
                   os::bsp::nameOf(os::bsp::productIdNames, id) == product;
        });
    if (found == hwVariants.end()) {
        throw UsageError("no hardware variant is of product '" + product +
                         "'; 'bsp-board variants' lists them");
    }
    return hardwarecode::bytesOf(found->code);
}

std::string parsedCode(const std::string& text)
{
    const std::optional<std::string> bytes = hardwarecode::parse(text);
    if (!bytes) {
        throw UsageError("'" + text + "' is no hardware code, which has 16 hexadecimal digits");
    }
    return *bytes;
}

void requireOneChoice(const CLI::App& command)
{
    std::string chosen;
    for (const char* option : {"--product", "--variant", "--code", "--capsule"}) {
        if (command.count(option) == 0) {
            continue;
        }
        if (!chosen.empty()) {
            throw UsageError(chosen + " and " + option + " cannot be given together");
        }
        chosen = option;
    }
}

std::string chosenCode(const CreateArguments& options, const CLI::App& command)
{
    requireOneChoice(command);
    if (command.count("--product") != 0) {
        return codeOfProduct(options.product);
    }
    if (command.count("--code") != 0) {
        return parsedCode(options.code);
    }
    return codeOfVariant(options.variant);
}

capsule::Contents readCapsule(const std::string& path)
{
    try {
        constexpr std::size_t most = 16UL * 1024 * 1024;
        const std::string text = files::readStart(path, most + 1);
        if (text.size() > most) {
            throw std::runtime_error("it has more than " + std::to_string(most) + " bytes");
        }
        return capsule::parse(text);
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw Failure("cannot use '" + path + "': " + error.what());
    }
}

void create(const CreateArguments& options, const CLI::App& command)
{
    if (command.count("--capsule") == 0) {
        createBoard(options.directory, chosenCode(options, command));
        return;
    }
    requireOneChoice(command);
    for (const std::string& what : createBoardOf(options.directory, readCapsule(options.capsule))) {
        std::cout << "not carried over: " << printable(what) << '\n';
    }
}

} // namespace

void addCreateCommand(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("create", "Make a board, in the state after a cold restart");
    const auto options = std::make_shared<CreateArguments>();
    command
        ->add_option("DIR", options->directory,
                     "The board's directory, which must not exist or be empty")
        ->required();
    command->add_option("--product", options->product,
                        "The first hardware variant of this product");
    command->add_option("--variant", options->variant, "This hardware variant, by its index")
        ->capture_default_str();
    command->add_option("--code", options->code,
                        "This hardware code, known or not: 16 hexadecimal digits");
    command->add_option("--capsule", options->capsule,
                        "The board of this capsule, which 'bsp-diag capture' wrote");
    command->callback([command, options] { create(*options, *command); });
}
