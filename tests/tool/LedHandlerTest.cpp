// The handler of "led setState" with an LED module that answers as the test case says.

#include "Command.h"
#include "Led.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>
#include <utility>

namespace
{

int setStateResult = 0;
std::pair<unsigned int, unsigned int> setStateArguments;
const char* lastLedName = "last LED";

/** Takes what the handler writes to standard error. */
class ErrorText
{
public:
    ErrorText() : m_previous(std::cerr.rdbuf(m_text.rdbuf())) {}
    ~ErrorText()
    {
        std::cerr.rdbuf(m_previous);
        std::cerr.clear();
    }
    ErrorText(const ErrorText&) = delete;
    ErrorText& operator=(const ErrorText&) = delete;

    std::string text() const { return m_text.str(); }

private:
    std::ostringstream m_text;
    std::streambuf* m_previous;
};

int runSetState()
{
    std::string led = "some LED";
    std::string state = "some state";
    char* arguments[] = {led.data(), state.data(), nullptr};
    return ledCommands.front().handler(2, arguments);
}

TEST(LedHandler, PassesTheNumbersOn)
{
    EXPECT_EQ(runSetState(), 0);
    EXPECT_EQ(setStateArguments, std::pair(2U, 6U));
}

TEST(LedHandler, TakesOnlyMinus1ForAFailure)
{
    for (const int result : {0, 1, 7, -2}) {
        const ErrorText error;
        setStateResult = result;
        EXPECT_EQ(runSetState(), 0) << result;
        EXPECT_EQ(error.text(), "");
    }
    const ErrorText error;
    setStateResult = -1;
    EXPECT_EQ(runSetState(), 1);
    EXPECT_EQ(error.text(), "Error: failed to set LED state.\n");
}

TEST(LedHandler, EndsTheListingAtANullName)
{
    const ErrorText error;
    lastLedName = nullptr;
    char* arguments[] = {nullptr};
    EXPECT_EQ(ledCommands.front().handler(0, arguments), 1);
    EXPECT_TRUE(std::cerr.bad());
    EXPECT_EQ(error.text(), "Error: valid arguments are <LEDname> <state>\n"
                            "Available LEDs are:\n"
                            "LED\n"
                            "LED\n");
}

} // namespace

int Led_setState(unsigned int led, unsigned int state)
{
    setStateArguments = {led, state};
    return setStateResult;
}

unsigned int Led_nameToObject(const char* /*name*/)
{
    return 2;
}

const char* Led_objectToName(unsigned int led)
{
    return led == 2 ? lastLedName : "LED";
}

unsigned int Led_stateNameToStateObject(const char* /*name*/)
{
    return 6;
}

const char* Led_stateObjectToStateName(unsigned int /*state*/)
{
    return "state";
}
