/* Prints what a program in C learns about its board: one line each. */
#include "Bsp.h"

#include <stddef.h>
#include <stdio.h>
#include <string.h>

/* A negative size where the value is not the one that C++ has. */
#define CHECK(NAME, CONDITION) typedef char NAME[(CONDITION) ? 1 : -1]

CHECK(ProductsEnd, Bsp_ProductId_EndOfList == 18);
CHECK(ProductValue, Bsp_ProductId_KT4851_4 == 14);
CHECK(RevisionsEnd, Bsp_HwRevision_EndOfList == 7);
CHECK(SwitchesEnd, Bsp_SwitchType_EndOfList == 4);
CHECK(DspsEnd, Bsp_DspType_EndOfList == 7);
CHECK(FpgasEnd, Bsp_TrafFpgaType_EndOfList == 23);
CHECK(ControlEnd, Bsp_ControlBackplane_EndOfList == 4);
CHECK(ControlEthernet, Bsp_ControlBackplane_Ethernet == 3);
CHECK(TrafficEnd, Bsp_TrafficBackplane_EndOfList == 3);
CHECK(TrafficEthernet, Bsp_TrafficBackplane_Ethernet == 2);
CHECK(ModesEnd, Bsp_RadiolinkMode_EndOfList == 2);
CHECK(PlatformsEnd, Bsp_PlatformType_EndOfList == 3);
CHECK(ResetsEnd, Bsp_ResetType_EndOfList == 4);
CHECK(IdRow, sizeof(struct BoardIdEntry) == 36);
CHECK(IdText, offsetof(struct BoardIdEntry, text) == 4);
CHECK(VariantSize, sizeof(NxuHwVariant) == 44);
CHECK(VariantRevision, offsetof(NxuHwVariant, hwRevision) == 0);
CHECK(VariantProduct, offsetof(NxuHwVariant, productCode) == 8);
CHECK(VariantCode, offsetof(NxuHwVariant, code) == 12);

static void printVariant(const NxuHwVariant* variant)
{
    int i;
    printf("variant: revision %d, product code %d, code", (int)variant->hwRevision,
           (int)variant->productCode);
    for (i = 0; i < 8; ++i) {
        printf(" %d", (int)variant->code.word[i]);
    }
    printf("\n");
}

static void printBoardIds(void)
{
    int row;
    for (row = 0; row < Bsp_NoOfBoardIds; ++row) {
        printf("%d %s\n", (int)Bsp_boardIdMap[row].boardId, Bsp_boardIdMap[row].text);
    }
}

static void printAnswers(void)
{
    const char* path = Bsp_getFpgaPath("pci");
    printf("board %d %s %s\n", Bsp_getBoardId(), Bsp_getBoardIdText(), Bsp_getLatestBoardIdText());
    printf("revision %d product %d\n", Bsp_getHwRevision(), Bsp_getProductId());
    printf("dsp %d fpga %d platform %d\n", Bsp_getDspType(), Bsp_getTrafFpgaType(),
           Bsp_getPlatformType());
    printf("backplanes %d %d\n", Bsp_getTrafficBackplane(), Bsp_getControlBackplane());
    printf("channels %u radiolinks %d switch %d\n", Bsp_getNumberOfChannels(), Bsp_getNumberOfRlt(),
           Bsp_getSwitchType());
    printf("paths %s %s\n", path, Bsp_getFpgaPath("PCI") == NULL ? "none" : "some");
    printf("mode %d set %d refused %d clear %d\n", Bsp_getRadiolinkMode(),
           Bsp_setRadiolinkMode(Bsp_RadiolinkMode_Rl5), Bsp_setRadiolinkMode(5),
           Bsp_clearRadiolinkMode());
}

static void printNames(void)
{
    printf("%s %s %s\n", Bsp_productIdName(Bsp_ProductId_KT4851_4),
           Bsp_hwRevisionName(Bsp_HwRevision_XPIC), Bsp_switchTypeName(Bsp_SwitchType_BobCat2));
    printf("%s %s %s\n", Bsp_dspTypeName(Bsp_DspType_BCM85651),
           Bsp_trafFpgaTypeName(Bsp_TrafFpgaType_Wigeon),
           Bsp_controlBackplaneName(Bsp_ControlBackplane_Pci));
    printf("%s %s %s\n", Bsp_trafficBackplaneName(Bsp_TrafficBackplane_Ptp),
           Bsp_radiolinkModeName(Bsp_RadiolinkMode_Rl5), Bsp_platformTypeName(Bsp_PlatformType_Pt));
    printf("%s %s %s\n", Bsp_resetTypeName(Bsp_ResetType_Watchdog), Bsp_resetTypeName(-1),
           Bsp_productIdName(Bsp_ProductId_EndOfList));
}

int main(int argc, char* argv[])
{
    if (argc > 1 && strcmp(argv[1], "ids") == 0) {
        printBoardIds();
    } else if (argc > 1 && strcmp(argv[1], "names") == 0) {
        printNames();
    } else {
        printVariant(Bsp_getNxuHwVariant());
        printAnswers();
    }
    return 0;
}
