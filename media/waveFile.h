// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "media/Recording.h"

namespace media {

enum class WaveSamples {
    /** Rounded and clipped at full scale. */
    int16,
    /** Unchanged. */
    float32,
};

/** Writes a recording as a WAV file that appears whole or not at all; above 4 GB in the form RF64.
 *  @param shown  is called with the fraction that has been written, 0 to 1
 *  @return as OutputFile::commit()
 *  @throws OutputError, Interrupted */
std::string writeWave(const std::string& path, const Recording& recording, WaveSamples samples,
                      const std::function<void(double)>& shown);

}  // namespace media
