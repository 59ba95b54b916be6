/* Uses the warm database and with it modules of three channels. */
#include "Bsp.h"

int main(int argc, char* argv[])
{
    (void)argv;
    return argc < 100 ? 0 : Bsp_getSlotId();
}
