// SPDX-License-Identifier: MIT
#pragma once

namespace beatatlas {

/** Gives the processor away once: a sleep of zero length. Lets a host's other threads breathe in long stages. */
void yieldProcessor();

}  // namespace beatatlas
