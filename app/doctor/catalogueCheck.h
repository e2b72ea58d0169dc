// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "doctor/Check.h"

namespace app {

/** The catalogues that commands take where none is named: those that a file of settings names, else
 *  the user's own; none where there is no home folder for it. @param settings  empty: no file */
std::vector<std::string> cataloguesInUse(const std::string& settings);

/** Whether a catalogue can be opened, is of a version that this program knows, and is sound. That it
 *  may not be written to is a note; that it is not there yet is no fault. */
Check checkCatalogue(const std::string& path);

}  // namespace app
