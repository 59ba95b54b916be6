#include "findings/Subjects.h"

#include <sys/stat.h>
#include <unistd.h>

namespace
{

/** Longer than any query works on it, or waits for another. */
constexpr long PatienceInSeconds = 10;
/** Between making the file and locking it. */
constexpr long InstantInSeconds = 1;

} // namespace

void judgeKernelImage(const Evidence& evidence, Diagnosis& diagnosis)
{
    const KernelImageEvidence& image = evidence.kernelImage;
    if (!image.file) {
        return;
    }
    const std::string place = image.file->text();
    const struct stat& status = image.file->status();
    if (!image.file->isRegular()) {
        diagnosis.add(
            "kernel-image-link",
            {{"place", place}, {"path", image.file->path()}, {"kind", image.file->kind()}});
        return;
    }
    if (!image.holders.empty()) {
        if (image.ageInSeconds > PatienceInSeconds) {
            diagnosis.add("kernel-image-held", {{"place", place},
                                                {"age", std::to_string(image.ageInSeconds)},
                                                {"holder", image.holdersText}});
        }
        return;
    }
    if (image.ageInSeconds > InstantInSeconds) {
        diagnosis.add("kernel-image-left",
                      {{"place", place}, {"size", std::to_string(image.file->size())}});
    }
    const uid_t user = ::geteuid();
    if (user != 0 && status.st_uid != user) {
        diagnosis.add("kernel-image-foreign", {{"place", place}, {"user", std::to_string(user)}});
    }
}
