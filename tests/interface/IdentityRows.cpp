#include "RowBuilders.h"

namespace interface
{

std::vector<FailureRow> identityRows()
{
    const std::vector<std::string> modes{"Bsp_setRadiolinkMode", "Bsp_clearRadiolinkMode"};
    const std::vector<std::string> modesInCpp{"os::bsp::setRadiolinkMode",
                                              "os::bsp::clearRadiolinkMode"};
    // The board of row 14.
    const std::vector<Answers> defaults{
        {"getBoardIdText", "Unknown board revision"},
        {"getBoardId", "786433"},
        {"getControlBackplane", "3"},
        {"getDspType", "6"},
        {"getHwRevision", "1"},
        {"getLatestBoardIdText", "Unknown board revision"},
        {"getNumberOfChannels", "1"},
        {"getNumberOfR", "2"},
        {"getNxuHwVariant", "9"},
        {"getPlatformType", "2"},
        {"getProductId", "12"},
        {"getTrafFpgaType", "19"},
        {"getTrafficBackplane", "2"},
    };
    std::vector<FailureRow> rows{
        onCase("Bsp_getProductId of an unknown code", "5",
               {"bsp.core 1 operator()(): Invalid hardware variant"}),
        onCase("Bsp_getProductId of an unknown product", "18",
               {"bsp.core 1 getProductId(): Unknown product ID: 8"}),
        onCase("Bsp_getNumberOfChannels of an unknown product", "1",
               {"bsp.core 1 getProductId(): Unknown product ID: 8",
                "bsp.core 1 getProductId(): Unknown product ID: 8",
                "bsp.core 1 getNumberOfChannels(): Unknown product id: 18"}),
        onCase("Bsp_getTrafFpgaType of an unknown word", "23",
               {"bsp.core 1 getTrafFpgaType(): Not supported traffic FPGA: 9"}),
        onCase("Bsp_getDspType of an unknown word", "7",
               {"bsp.core 1 getDspType(): Unknown dspType: 9"}),
        onCase("Bsp_getPlatformType of an unknown word", "3",
               {"bsp.core 1 getPlatformType(): Unknown platformType: 9"}),
        onCase("Bsp_getTrafficBackplane of an unknown word", "3",
               {"bsp.core 1 getTrafficBackplane(): Unknown backplaneType: 9"}),
        onCase("Bsp_getControlBackplane of an unknown word", "4",
               {"bsp.core 1 getControlBackplane(): Unknown backplaneType: 9"}),
        onCase("Bsp_getNumberOfRlt of an unknown word", "2",
               {"bsp.core 1 getNumberOfRadiolinks(): Unknown traf type: 9"}),
        onCase("Bsp_setRadiolinkMode of no mode", "-1",
               {"bsp.core 1 setRadiolinkMode(): Unsupported radio-link mode: EndOfList"}),
        onCase("Bsp_getFpgaPath of no name", "null", {}),
        withAnswer(onCall(modes, "NxuConfig refuses", 1, 1, {}), "-1"),
        withAnswer(onCall(modesInCpp, "NxuConfig refuses", 1, 1, {}), "0"),
        withAnswer(onCall({"Bsp_", "os::bsp::"}, "NxuConfig throws", 1, 1, {}),
                   "exception: no bus"),
    };
    append(rows,
           forBoth(defaults, forGood(onCall({}, "e2prom_data_read", 1, 1,
                                            {"bsp.core 1 operator()(): e2prom_data_read() failed. "
                                             "Returned @n"}))));
    rows.push_back(
        withAnswer(onCall({"Bsp_getNumberOfChannels of an unknown product"}, "pthread_once", 3, Any,
                          {"bsp.core 1 getProductId(): Unknown product ID: 8"}),
                   "exception: @e"));
    for (const char* module : {"Bsp_get", "os::bsp::get"}) {
        rows.push_back(withAnswer(onCall({module}, "pthread_once", 1, Any, {}), "exception: @e"));
    }
    return rows;
}

} // namespace interface
