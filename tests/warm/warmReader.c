/*
 * A program in C that shares an object with others: prints what it holds, under its mutex, and the
 * slot id.
 */
#include "Bsp.h"

#include <pthread.h>
#include <stdbool.h>
#include <stdio.h>

int main(int argc, char* argv[])
{
    void* object = NULL;
    void* sync = NULL;
    bool created = false;
    if (argc != 2 || Bsp_retrieveDtcmObject(argv[1], &object, 64) != 0) {
        printf("nothing\n");
        return 1;
    }
    if (Bsp_getDtcmObjectData(argv[1], &object, 64, &sync, &created) != 0 || created) {
        return 2;
    }
    pthread_mutex_lock((pthread_mutex_t*)sync);
    printf("%s\n", (const char*)object);
    pthread_mutex_unlock((pthread_mutex_t*)sync);
    printf("%d\n", Bsp_getSlotId());
    return 0;
}
