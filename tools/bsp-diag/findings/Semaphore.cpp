#include "findings/SharedNames.h"
#include "findings/Subjects.h"

void judgeSemaphore(const Evidence& evidence, Diagnosis& diagnosis)
{
    const SharedName& name = evidence.names.semaphore;
    if (evidence.held.waitersForSemaphore) {
        diagnosis.add("semaphore-held",
                      {{"place", name.file->text()},
                       {"waiters", std::to_string(*evidence.held.waitersForSemaphore)},
                       {"users", textOf(name.users)}});
    }
    judgeName(name, "semaphore", diagnosis);
    constexpr std::size_t expected = glibc::semaphoreSize(glibc::OwnWordSize);
    if (name.file && name.file->isRegular() && name.file->size() != expected) {
        diagnosis.add("semaphore-size", {{"place", name.file->text()},
                                         {"size", std::to_string(name.file->size())},
                                         {"expected", std::to_string(expected)}});
    }
}
