/* A program of the sample board's, on the installed layer. */
#include "Bsp.h"

#include <stdio.h>

int main(void)
{
    printf("product %d revision %d mode %d code %d\n", Bsp_getProductId(), Bsp_getHwRevision(),
           Bsp_getRadiolinkMode(), Bsp_getNxuHwVariant()->code.word[7]);
    return SAMPLE_BOARD - 1;
}
