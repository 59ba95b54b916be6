#include "commands/Commands.h"

#include "BoardFacts.h"
#include "findings/Subjects.h"
#include "findings/Texts.h"

#include <chrono>
#include <iostream>
#include <memory>

namespace
{

void printText(const Diagnosis& diagnosis)
{
    for (const Finding& finding : diagnosis.findings) {
        std::cout << lineOf(finding) << '\n';
    }
    for (const std::string& remark : diagnosis.notLookedAt) {
        std::cout << "not looked at: " << remark << '\n';
    }
    if (diagnosis.findings.empty()) {
        std::cout << "nothing found\n";
    }
}

void printJson(const Diagnosis& diagnosis)
{
    Json document = facts::document("check");
    document["findings"] = Json::array();
    for (const Finding& finding : diagnosis.findings) {
        document["findings"].push_back(jsonOf(finding));
    }
    document["notLookedAt"] = diagnosis.notLookedAt;
    std::cout << facts::textOf(document);
}

int check(bool isJson)
{
    const Evidence evidence(Places{}, Moment);
    const Diagnosis diagnosis = diagnose(evidence);
    if (isJson) {
        printJson(diagnosis);
    } else {
        printText(diagnosis);
    }
    if (!diagnosis.findings.empty()) {
        return Found;
    }
    return diagnosis.isBlind ? CannotLook : Done;
}

} // namespace

void addCheckCommand(CLI::App& app, int& status)
{
    CLI::App* const command = app.add_subcommand(
        "check", "Say what is wrong with this board, changing nothing and waiting for nobody");
    const auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "Print a document for programs");
    command->callback([isJson, &status] { status = check(*isJson); });
}
