/* Uses one function of the board. */
#include "Bsp.h"

int main(void)
{
    return Bsp_getSwitchType();
}
