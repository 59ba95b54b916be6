#include "commands/Commands.h"

#include "BoardFacts.h"
#include "HardwareCode.h"
#include "Products.h"

#include <iomanip>
#include <iostream>
#include <memory>

namespace
{

using os::bsp::hwVariants;
using os::bsp::nameOf;

void printDocument()
{
    Json document = facts::document("variants");
    document["variants"] = Json::array();
    for (std::size_t index = 0; index < hwVariants.size(); ++index) {
        document["variants"].push_back(facts::variantFacts(index, hwVariants[index]));
    }
    std::cout << facts::textOf(document);
}

void listVariants()
{
    std::cout << "index  product   revision  hardware code\n" << std::left;
    for (std::size_t index = 0; index < hwVariants.size(); ++index) {
        const os::bsp::NxuHwVariant& variant = hwVariants[index];
        std::cout << std::setw(5) << index << "  " << std::setw(8)
                  << nameOf(os::bsp::productIdNames, os::bsp::productOf(variant.productCode))
                  << "  " << std::setw(8) << nameOf(os::bsp::hwRevisionNames, variant.hwRevision)
                  << "  " << hardwarecode::textOf(hardwarecode::bytesOf(variant.code)) << '\n';
    }
}

} // namespace

void addVariantsCommand(CLI::App& app)
{
    CLI::App* const command =
        app.add_subcommand("variants", "List the hardware variants that a board can be");
    const auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "Print a document for programs");
    command->callback([isJson] {
        if (*isJson) {
            printDocument();
        } else {
            listVariants();
        }
    });
}
