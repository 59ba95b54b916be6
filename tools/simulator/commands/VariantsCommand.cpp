#include "commands/Commands.h"

#include "Products.h"
#include "board/HardwareCode.h"

#include <iomanip>
#include <iostream>

namespace
{

using os::bsp::hwVariants;
using os::bsp::nameOf;

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
    app.add_subcommand("variants", "List the hardware variants that a board can be")
        ->callback(listVariants);
}
