// SPDX-License-Identifier: GPL-2.0-or-later
// Fuzz target: the simulated analysis server inspects any upload, however broken, without reading outside it.
#include "avireader.h"
#include "fuzzsupport.h"

using fuzzsupport::require;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A copy of exactly the input's size, so a read past its end is caught.
    const avireader::Summary summary = avireader::inspect(fuzzsupport::bytes(data, size));
    if (summary.valid)
        require(summary.problem.isEmpty() && summary.frames > 0);
    else
        require(!summary.problem.isEmpty());
    return 0;
}
