#ifndef TESTS_WARM_SLOTOBJECT_H
#define TESTS_WARM_SLOTOBJECT_H

#include <cstdint>

#include <pthread.h>

/** The object "SLOT" as other programs of the board see it. */
struct SlotObject
{
    std::int32_t slotId;
    pthread_mutex_t mutex;
};

#endif
