// SPDX-License-Identifier: GPL-2.0-or-later
// Physical addresses of mapped camera buffers, for hardware that reads memory directly.
#pragma once

// Fills *physical with the 32-bit bus address of a mapped buffer; returns 0,
// or -1 when the address cannot be translated. Without the SoC's memory
// layer (the simulator, a desktop) the answer is a stable stand-in derived
// from the virtual address: unique per buffer, never dereferenced, and the
// software encoder does not depend on it.
int mem_addr_vir2phy(unsigned long virtualAddress, unsigned long *physical);
