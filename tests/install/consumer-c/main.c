/* A program of a customer's, in C: everything that the headers offer to C, used once. */
#include <Bsp.h>
#include <Led.h>
#include <RState.h>
#include <WarmDatabase.h>
#include <WarmSlot.h>

#include <stdio.h>

int main(void)
{
    char rstate[RState_MaxRStateLen] = "R1A01";
    int major = 0;
    int minor = 0;
    int verification = 0;
    void* object = NULL;
    void* sync = NULL;
    bool created = false;

    printf("product %s\n", Bsp_getProductId() == Bsp_ProductId_EndOfList ? "unknown" : "known");
    printf("revision %s\n",
           Bsp_getNxuHwVariant()->hwRevision == Bsp_getHwRevision() ? "known" : "unknown");
    printf("reset %s, for example %s\n",
           Bsp_getResetType() == Bsp_ResetType_EndOfList ? "unknown" : "known",
           Bsp_resetTypeName(Bsp_ResetType_Watchdog));
    printf("row 18: %s\n", Bsp_boardIdMap[Bsp_NoOfBoardIds - 1].text);
    printf("led 2: %s, state 6: %s\n", Led_objectToName(Led_Green),
           Led_stateObjectToStateName(Led_Interrupting));
    if (RState_increment(rstate, sizeof rstate, RState_IncrementType_Auto) == 1 &&
        RState_toVersion(rstate, &major, &minor, &verification) == 1)
    {
        printf("%s is %d.%d.%d\n", rstate, major, minor, verification);
    }
    if (WarmDatabase_getObjectData("consumer", &object, 4, &sync, &created) == 0) {
        printf("object %s\n", created ? "created" : "found");
    }
    Bsp_setSlotId(7);
    printf("slot %d\n", Bsp_getSlotId());
    return 0;
}
