/**
 * @file
 * @brief Writes one message on each of the trace library's interfaces: CHANNEL LEVEL TEXT.
 */
#include "HvxTrace.h"

#include <string>

int main(int /*argc*/, char** argv)
{
    const std::string name = argv[1];
    const auto level = static_cast<HvxTraceLevel>(std::stoul(argv[2]));
    const std::string text = argv[3];
    static const HvxTraceHeader header{"file.cpp", 7, "main"};

    HvxTrace channel(name, 3);
    channel.beginLogMsg(level, header);
    channel.logMsgData(text.data(), static_cast<unsigned int>(text.size()));
    channel.endLogMsg();

    GT_TraceRecord record{TraceRecordStartLevel, name.c_str()};
    GT_printf2(&record, level, &header, "%s\n", text.c_str());
    return 0;
}
