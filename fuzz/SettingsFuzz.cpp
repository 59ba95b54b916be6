/**
 * @file
 * @brief Fuzzes the store of settings: any file, then questions and changes, in memory and on disk.
 */
#include "Expect.h"
#include "KeptTrace.h"
#include "NxuConfig.h"
#include "SettingsText.h"
#include "models/SettingsModel.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

using fuzz::expectEqual;
using fuzz::SettingsModel;

const std::string Board = "/tmp/fuzz-settings";
const std::string File = Board + "/settings";

void write(const std::string& text)
{
    std::ofstream(File, std::ios::binary) << text;
}

std::string contents()
{
    std::ifstream file(File, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string textOf(const SettingsModel& model)
{
    std::string text;
    for (const SettingsModel::Line& line : model.lines) {
        text += line.raw + '\n';
    }
    return text;
}

std::string listed(const std::map<std::string, std::string>& entries)
{
    std::string text;
    for (const auto& [key, value] : entries) {
        text += std::to_string(key.size()) + ' ' + key + ' ' + std::to_string(value.size()) + ' ' +
                value + '\n';
    }
    return text;
}

/** What the text is after a key got a value: all other lines as they were. */
void expectSet(const std::string& got, SettingsModel before, const std::string& key,
               const std::string& value)
{
    const SettingsModel after = SettingsModel::ofText(got);
    expectEqual("what is wrong with a changed file", after.error, "");
    auto wanted = before.entries();
    wanted[key] = value;
    expectEqual("the entries", listed(after.entries()), listed(wanted));
    // Where the key's last line was, or at the end.
    const auto isOfKey = [&](const SettingsModel::Line& line) { return line.key == key; };
    const auto line = std::find_if(after.lines.begin(), after.lines.end(), isOfKey);
    fuzz::expect("the new line is there once",
                 std::count_if(after.lines.begin(), after.lines.end(), isOfKey) == 1);
    const auto former = std::find_if(before.lines.rbegin(), before.lines.rend(), isOfKey);
    if (former == before.lines.rend()) {
        before.lines.push_back(*line);
    } else {
        *former = {line->raw, std::nullopt, ""};
        before.clear(key);
    }
    expectEqual("the text", got, textOf(before));
    for (const char character : line->raw) {
        fuzz::expect("a new line is printable", character >= ' ' && character <= '~');
    }
}

/** The text, when it can be read; its error is compared in any case. */
std::optional<settings::SettingsText> read(const std::string& text, const SettingsModel& model)
{
    try {
        settings::SettingsText settings(text);
        expectEqual("what the model finds wrong", model.error, "");
        return settings;
    } catch (const std::runtime_error& error) {
        expectEqual("the error", error.what(), model.error);
        return std::nullopt;
    }
}

void changeInMemory(settings::SettingsText& settings, SettingsModel& model, const std::string& key,
                    const std::string& value, bool clears)
{
    if (clears) {
        settings.clear(key);
        model.clear(key);
        expectEqual("the text", settings.text(), textOf(model));
        return;
    }
    try {
        settings.set(key, value);
        fuzz::expect("the key can be one", SettingsModel::isKey(key));
        expectSet(settings.text(), model, key, value);
        model = SettingsModel::ofText(settings.text());
    } catch (const std::runtime_error& error) {
        fuzz::expect("the key can be none", !SettingsModel::isKey(key));
        expectEqual("the refusal", error.what(),
                    key.empty() ? "an empty key" : "a key of more than 511 bytes");
    }
}

void askOnDisk(const SettingsModel& model, const std::string& key)
{
    try {
        const auto entries = model.entries();
        const auto found = entries.find(key);
        const std::string answer = os::bsp::NxuConfig().get(key);
        expectEqual("the answer", answer, found == entries.end() ? "" : found->second);
        expectEqual("what the model finds wrong", model.error, "");
    } catch (const std::runtime_error& error) {
        expectEqual("the exception", error.what(),
                    "cannot read the configuration store " + File + ": " + model.error);
    }
}

void changeOnDisk(const std::string& text, const SettingsModel& model, const std::string& key,
                  const std::string& value, bool clears)
{
    os::bsp::NxuConfig config;
    const bool isReadable = model.error.empty();
    if (clears) {
        expectEqual("clear", config.clear(key) ? 1 : 0, isReadable ? 1 : 0);
        SettingsModel wanted = model;
        wanted.clear(key);
        const bool isChanged = isReadable && wanted.lines.size() != model.lines.size();
        expectEqual("the file", contents(), isChanged ? textOf(wanted) : text);
        return;
    }
    const bool isPossible = isReadable && SettingsModel::isKey(key);
    expectEqual("set", config.set(key, value) ? 1 : 0, isPossible ? 1 : 0);
    if (isPossible) {
        expectSet(contents(), model, key, value);
    } else {
        expectEqual("the file", contents(), text);
    }
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(Board)) {
        ++entries;
    }
    expectEqual("the files of the board", static_cast<long>(entries), 1);
}

std::string anyKey(FuzzedDataProvider& input, const SettingsModel& model)
{
    const auto entries = model.entries();
    if (!entries.empty() && input.ConsumeBool()) {
        return std::next(entries.begin(),
                         input.ConsumeIntegralInRange<int>(0, static_cast<int>(entries.size()) - 1))
            ->first;
    }
    if (input.ConsumeIntegralInRange<int>(0, 15) == 0) {
        return std::string(input.ConsumeIntegralInRange<std::size_t>(510, 513), 'k');
    }
    return input.ConsumeRandomLengthString(20);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    std::filesystem::create_directory(Board);
    return ::setenv("BSP_BOARD_DIR", Board.c_str(), 1);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    const bool onDisk = input.ConsumeIntegralInRange<int>(0, 15) == 0;
    const bool clears = input.ConsumeBool();
    const std::string value = input.ConsumeRandomLengthString(40);
    const std::string text = input.ConsumeRandomLengthString(4000);
    SettingsModel model = SettingsModel::ofText(text);
    const std::string key = anyKey(input, model);

    auto settings = read(text, model);
    if (settings) {
        expectEqual("the entries", listed(settings->entries()), listed(model.entries()));
    }
    if (onDisk) {
        write(text);
        askOnDisk(model, key);
        changeOnDisk(text, model, key, value, clears);
    } else if (settings) {
        changeInMemory(*settings, model, key, value, clears);
        changeInMemory(*settings, model, anyKey(input, model), key, input.ConsumeBool());
    }
    fuzz::takeMessages();
    return 0;
}
