// SPDX-License-Identifier: GPL-2.0-or-later
// Physical addresses of mapped camera buffers, for hardware that reads memory directly.
#include "memlayer.h"

int mem_addr_vir2phy(unsigned long virtualAddress, unsigned long *physical)
{
    if (!physical || virtualAddress == 0)
        return -1;
    *physical = virtualAddress & 0xffffffffUL;
    return 0;
}
