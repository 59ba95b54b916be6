#include "findings/Subjects.h"

Diagnosis diagnose(const Evidence& evidence)
{
    Diagnosis diagnosis;
    for (const auto judge :
         {judgeEeprom, judgeDtcm, judgeRestart, judgeSemaphore, judgeMutexes, judgeSlot, judgeTable,
          judgeKernelImage, judgeSettings, judgeLeds, judgeSystem})
    {
        judge(evidence, diagnosis);
    }
    if (!evidence.processes.isThere()) {
        diagnosis.isBlind = true;
        diagnosis.miss("who uses the shared names: there is nothing in " +
                       evidence.places.processes);
    } else if (evidence.processes.hidesOthers()) {
        diagnosis.miss("what processes of other users have mapped, which are hidden here: root "
                       "may look");
    } else if (evidence.processes.numberOfUnseen() != 0) {
        diagnosis.miss("what " + std::to_string(evidence.processes.numberOfUnseen()) +
                       " processes of other users have mapped: root may look");
    }
    return diagnosis;
}
