#include "Text.h"
#include "WarmArea.h"
#include "WarmLayout.h"
#include "findings/SharedNames.h"
#include "findings/Subjects.h"

namespace
{

std::string objectIn(const Evidence& evidence, unsigned int block)
{
    if (!evidence.area.isKnown()) {
        return "name not known";
    }
    const WarmArea area(*evidence.area);
    const std::string name = printable(area.block(block - 1).name);
    return name.empty() ? "no object" : name;
}

void judgeSize(const SharedFile& file, Diagnosis& diagnosis)
{
    if (file.size() == os::bsp::dtcm::SyncAreaSize) {
        return;
    }
    const auto wordSize = wordSizeOfSyncArea(file.size());
    diagnosis.add("mutexes-size", {{"place", file.text()},
                                   {"size", std::to_string(file.size())},
                                   {"expected", std::to_string(os::bsp::dtcm::SyncAreaSize)},
                                   {"word", wordSize ? std::string(": those of ") +
                                                           glibc::textOf(*wordSize) + " programs"
                                                     : ""}});
}

} // namespace

void judgeMutexes(const Evidence& evidence, Diagnosis& diagnosis)
{
    const SharedName& name = evidence.names.syncArea;
    judgeName(name, "mutexes", diagnosis);
    if (!name.file || !name.file->isRegular()) {
        return;
    }
    judgeSize(*name.file, diagnosis);
    for (const auto& [block, thread] : evidence.held.blocks) {
        const Holder holder = holderOf(evidence, thread, name.file->identity());
        diagnosis.add(holder.isAlive ? "mutex-held" : "mutex-dead",
                      {{"block", std::to_string(block)},
                       {"object", objectIn(evidence, block)},
                       {"holder", holder.text}});
    }
}
