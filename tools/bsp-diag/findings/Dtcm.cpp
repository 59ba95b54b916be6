#include "Hardware.h"
#include "Text.h"
#include "WarmLayout.h"
#include "evidence/BoardFiles.h"
#include "findings/Subjects.h"

#include <cerrno>

namespace
{

bool isRefusal(int error)
{
    return error == EACCES || error == EPERM || error == EROFS;
}

} // namespace

void judgeDtcm(const Evidence& evidence, Diagnosis& diagnosis)
{
    const Dtcm& dtcm = evidence.dtcm;
    const std::string place = placeOf(hardware::WarmAreaDevice);
    if (dtcm.fileSize() && *dtcm.fileSize() < os::bsp::dtcm::AreaSize) {
        diagnosis.add("dtcm-short", {{"place", place}, {"size", std::to_string(*dtcm.fileSize())}});
    } else if (dtcm.openError() != 0) {
        diagnosis.add(isRefusal(dtcm.openError()) ? "dtcm-not-writable" : "dtcm-missing",
                      {{"place", place}, {"error", errorText(dtcm.openError())}});
    } else if (dtcm.mapError() != 0) {
        diagnosis.add("dtcm-not-mappable",
                      {{"place", place}, {"error", errorText(dtcm.mapError())}});
    }
    if (!evidence.lockableMemory.isEnough) {
        diagnosis.add("dtcm-not-lockable", {{"limit", evidence.lockableMemory.limit}});
    }
    if (!evidence.area.isKnown()) {
        diagnosis.miss("the objects in the warm area: " + evidence.area.reason());
    }
}
