/**
 * @file
 * @brief The board's front LEDs.
 *
 * The LEDs are driven through the kernel's LED class. Numbers outside the enumerations and null
 * pointers are programming errors: they abort the program, in every build. Failures go to the trace
 * channel "bsp.led" at level 1. Any thread may call any function.
 */
#ifndef BSP_LED_H
#define BSP_LED_H

#include "BspExport.h"

/** The LEDs. Values are never renumbered. */
enum Led_Object
{
    Led_Yellow = 0,
    Led_Red = 1,
    Led_Green = 2,
    NoOfLeds = 3 /**< Number of LEDs; also "no such LED". */
};

/** What an LED shows. Values are never renumbered. */
enum Led_State
{
    Led_SteadyOff = 0,
    Led_SteadyOn = 1,
    Led_StandbyHot = 2,
    Led_StandbyCold = 3,
    Led_Slow = 4,
    Led_Fast = 5,
    Led_Interrupting = 6,
    NoOfLedStates = 7 /**< Number of states; also "no such state". */
};

#ifdef __cplusplus
extern "C"
{
#endif

    /**
     * Sets what an LED shows.
     *
     * @param led    a Led_Object less than NoOfLeds
     * @param state  a Led_State less than NoOfLedStates
     * @return 0, or -1 with errno as the failing call set it
     */
    BSP_API int Led_setState(unsigned int led, unsigned int state);

    /**
     * The LED whose name begins the text: "green" and "greenish" are the green LED.
     *
     * @param name  not null
     * @return a Led_Object; NoOfLeds when there is none
     */
    BSP_API unsigned int Led_nameToObject(const char* name);

    /** Name of an LED, a static text. @p led is less than NoOfLeds. */
    BSP_API const char* Led_objectToName(unsigned int led);

    /**
     * The state whose name begins the text.
     *
     * @param name  not null
     * @return a Led_State; NoOfLedStates when there is none
     */
    BSP_API unsigned int Led_stateNameToStateObject(const char* name);

    /** Name of a state, a static text. @p state is less than NoOfLedStates. */
    BSP_API const char* Led_stateObjectToStateName(unsigned int state);

#ifdef __cplusplus
}
#endif

#endif
