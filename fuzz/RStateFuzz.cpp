/**
 * @file
 * @brief Fuzzes R-states: texts, versions, sequences of increments, comparisons, the C functions.
 */
#include "Expect.h"
#include "KeptTrace.h"
#include "RState.h"
#include "models/RStateModel.h"

#include <array>
#include <sstream>

#include <fuzzer/FuzzedDataProvider.h>

namespace
{

using fuzz::expectEqual;
using fuzz::RStateModel;
using Messages = std::vector<std::string>;

constexpr std::size_t LongestText = 40;

void expectSame(const std::string& what, const RState& got, const RStateModel& wanted)
{
    expectEqual(what + ": text", got.getText(), wanted.text);
    expectEqual(what + ": major", got.getMajor(), wanted.major);
    expectEqual(what + ": minor", got.getMinor(), wanted.minor);
    expectEqual(what + ": verification", got.getVerification(), wanted.verification);
}

int anyType(FuzzedDataProvider& input)
{
    return input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(-1, 5)
                               : input.ConsumeIntegral<int>();
}

std::string anyText(FuzzedDataProvider& input)
{
    return input.ConsumeRandomLengthString(LongestText);
}

void stepObject(FuzzedDataProvider& input, Messages& messages)
{
    const std::string text = anyText(input);
    const bool isOfText = input.ConsumeBool();
    const int major = input.ConsumeIntegral<int>();
    const int minor = input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(-2, 107861)
                                          : input.ConsumeIntegral<int>();
    const int verification = input.ConsumeBool() ? input.ConsumeIntegralInRange<int>(-1, 1001)
                                                 : input.ConsumeIntegral<int>();
    RState rstate = isOfText ? RState(text) : RState(major, minor, verification);
    RStateModel model = isOfText ? RStateModel::ofText(text, messages)
                                 : RStateModel::ofVersion(major, minor, verification, messages);
    expectSame("made", rstate, model);
    for (int steps = input.ConsumeIntegralInRange<int>(0, 8); steps > 0; --steps) {
        const int type = anyType(input);
        rstate.increment(static_cast<IncrementType>(type));
        model.increment(type, messages);
        expectSame("stepped", rstate, model);
    }
    std::ostringstream stream;
    stream << rstate;
    expectEqual("written", stream.str(), model.text);
    expectEqual("parsed again", rstate.updateVersion() ? 1 : 0, model.parse(messages) ? 1 : 0);
    expectSame("parsed again", rstate, model);
}

void compare(FuzzedDataProvider& input, Messages& messages)
{
    const std::string first = anyText(input);
    const std::string second = anyText(input);
    const RStateModel a = RStateModel::ofText(first.c_str(), messages);
    const RStateModel b = RStateModel::ofText(second.c_str(), messages);
    int wanted = -1;
    if (!a.isBefore(b, messages)) {
        wanted = a.isEqual(b, messages) ? 0 : 1;
    }
    expectEqual("compared", RState_compare(first.c_str(), second.c_str()), wanted);
}

void convert(FuzzedDataProvider& input, Messages& messages)
{
    const std::string text = anyText(input);
    std::array<int, 3> version{-1, -1, -1};
    const RStateModel model = RStateModel::ofText(text.c_str(), messages);
    expectEqual("toVersion", RState_toVersion(text.c_str(), &version[0], &version[1], &version[2]),
                1);
    expectEqual("major", version[0], model.major);
    expectEqual("minor", version[1], model.minor);
    expectEqual("verification", version[2], model.verification);

    std::array<char, 32> room{};
    const RStateModel made = RStateModel::ofVersion(version[0], version[1], version[2], messages);
    expectEqual("fromVersion", RState_fromVersion(room.data(), version[0], version[1], version[2]),
                1);
    expectEqual("text of version", room.data(), made.text);
}

void stepText(FuzzedDataProvider& input, Messages& messages)
{
    const std::string text = anyText(input);
    const std::vector<std::string> names{"Auto", "Revision", "Minor", "Major", "EndOfList", "auto"};
    const bool byName = input.ConsumeBool();
    const std::string name =
        input.ConsumeBool()
            ? input.ConsumeRandomLengthString(10)
            : input.PickValueInArray({names[0], names[1], names[2], names[3], names[4], names[5]});
    const int given = anyType(input);
    const auto size = input.ConsumeIntegralInRange<unsigned int>(0, LongestText);

    std::vector<char> room(LongestText + 24, '#');
    text.copy(room.data(), text.size());
    room[text.size()] = '\0';
    std::string wanted(room.data(), room.size());

    int type = given;
    if (byName) {
        type = 0;
        while (type < 4 && names[static_cast<std::size_t>(type)] != name.c_str()) {
            ++type;
        }
    }
    int wantedResult = 0;
    if (!byName || type < 4) {
        RStateModel model = RStateModel::ofText(text.c_str(), messages);
        model.increment(type, messages);
        if (model.text.size() < size) {
            wantedResult = 1;
            wanted.replace(0, model.text.size() + 1, model.text.c_str(), model.text.size() + 1);
        }
    }
    const int result = byName
                           ? RState_increment2(room.data(), size, name.c_str())
                           : RState_increment(room.data(), size, static_cast<IncrementType>(given));
    expectEqual("increment", result, wantedResult);
    expectEqual("room", std::string(room.data(), room.size()), wanted);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    Messages messages;
    fuzz::takeMessages();
    switch (input.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
        stepObject(input, messages);
        break;
    case 1:
        compare(input, messages);
        break;
    case 2:
        convert(input, messages);
        break;
    default:
        stepText(input, messages);
        break;
    }
    expectEqual("the trace", fuzz::joined(fuzz::takeMessages()), fuzz::joined(messages));
    return 0;
}
