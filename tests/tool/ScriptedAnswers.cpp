/**
 * @file
 * @brief Answers that no board makes the layer give, for a tool under test.
 *
 * SCRIPTED_BOARD_ID_TEXT    when set, the text of the board ID is null
 * SCRIPTED_RADIOLINK_MODE   the radio-link mode, any number
 */
#include "Bsp.h"

#include <cstdlib>
#include <string>

// The tool's calls of these two functions come here.
const char* realBoardIdText() __asm__("__real_Bsp_getBoardIdText");
const char* scriptedBoardIdText() __asm__("__wrap_Bsp_getBoardIdText");
const char* scriptedBoardIdText()
{
    return std::getenv("SCRIPTED_BOARD_ID_TEXT") == nullptr ? realBoardIdText() : nullptr;
}

int realRadiolinkMode() __asm__("__real_Bsp_getRadiolinkMode");
int scriptedRadiolinkMode() __asm__("__wrap_Bsp_getRadiolinkMode");
int scriptedRadiolinkMode()
{
    const char* scripted = std::getenv("SCRIPTED_RADIOLINK_MODE");
    return scripted == nullptr ? realRadiolinkMode() : std::stoi(scripted);
}
