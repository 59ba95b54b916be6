#include "commands/Commands.h"

#include "BoardFacts.h"
#include "Bsp.h"
#include "Text.h"
#include "evidence/Evidence.h"
#include "report/InfoText.h"

#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <string>

namespace
{

struct InfoArguments
{
    bool isJson = false;
    std::string kernel;
    std::string bootLoader;
};

constexpr std::size_t LabelSize = 128;
using Label = std::array<char, LabelSize>;

Json kernelFacts(const std::string& image)
{
    Label label{};
    if (Bsp_getKernelRState(image.c_str(), label.data(), label.size()) != 0) {
        return facts::unknown("no kernel version in '" + printable(image) + "'");
    }
    if (label[0] == '\0') {
        return facts::unknown("the kernel in '" + printable(image) + "' has no R-state");
    }
    return {{"rState", printable(label.data())}};
}

Json bootLoaderFacts(const std::string& image)
{
    Label product{};
    Label label{};
    if (Bsp_getUbootProductInfo(image.c_str(), product.data(), product.size(), label.data(),
                                label.size()) != 0)
    {
        return facts::unknown("cannot read '" + printable(image) + "'");
    }
    return {{"productNumber", printable(product.data())}, {"rState", printable(label.data())}};
}

int info(const InfoArguments& options)
{
    const Evidence evidence(Places{}, std::chrono::milliseconds(0));
    Json document = facts::document("board");
    document["board"] = facts::boardFacts(evidence.rawBoard());
    if (!options.kernel.empty()) {
        document["board"]["kernel"] = kernelFacts(options.kernel);
    }
    if (!options.bootLoader.empty()) {
        document["board"]["bootLoader"] = bootLoaderFacts(options.bootLoader);
    }
    if (options.isJson) {
        std::cout << facts::textOf(document);
    } else {
        writeInfo(std::cout, document);
    }
    return Done;
}

} // namespace

void addInfoCommand(CLI::App& app, int& status)
{
    CLI::App* const command =
        app.add_subcommand("info", "Say what this board is: all that the layer answers");
    const auto options = std::make_shared<InfoArguments>();
    command->add_flag("--json", options->isJson, "Print a document for programs");
    command->add_option("--kernel", options->kernel, "Also say what kernel is in this image");
    command->add_option("--boot-loader", options->bootLoader,
                        "Also say what boot loader is in this image or device");
    command->callback([options, &status] { status = info(*options); });
}
