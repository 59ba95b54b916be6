#include "Text.h"
#include "WarmArea.h"
#include "findings/Subjects.h"

#include <algorithm>

namespace
{

/** As in "LINK (block 3)". */
std::string textOf(const WarmArea::Block& block)
{
    return printable(block.name) + " (block " + std::to_string(block.number) + ')';
}

void judgeNames(const WarmArea& area, Diagnosis& diagnosis)
{
    std::string open;
    for (const WarmArea::Block& block : area.usedBlocks()) {
        if (block.name.size() == WarmArea::NameSize) {
            open += (open.empty() ? "" : ", ") + textOf(block);
        }
    }
    if (!open.empty()) {
        diagnosis.add("table-name-open", {{"objects", open}});
    }
}

void judgeOrder(const WarmArea& area, Diagnosis& diagnosis)
{
    std::size_t free = 0;
    while (free < area.numberOfBlocks() && !area.block(free).name.empty()) {
        ++free;
    }
    std::string behind;
    for (const WarmArea::Block& block : area.usedBlocks()) {
        if (block.number > free) {
            behind += (behind.empty() ? "" : ", ") + textOf(block);
        }
    }
    if (!behind.empty()) {
        diagnosis.add("table-unreachable",
                      {{"free", std::to_string(free + 1)}, {"objects", behind}});
    }
}

} // namespace

void judgeTable(const Evidence& evidence, Diagnosis& diagnosis)
{
    if (!evidence.area.isKnown() || evidence.willBeCleared()) {
        return;
    }
    const WarmArea area(*evidence.area);
    judgeNames(area, diagnosis);
    judgeOrder(area, diagnosis);
}
