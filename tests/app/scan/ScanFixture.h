// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "scan/CatalogueFile.h"
#include "support/AudioFileWriter.h"
#include "support/TemporaryFolder.h"
#include "support/ToolRun.h"

namespace test {

/** A folder of music, and a catalogue elsewhere. */
class ScanFixture : public testing::Test {
protected:
    /** A track that no other is like, by the seconds it lasts. */
    std::string addTrack(const std::string& name, double seconds = 1.0) {
        const std::string path = music_.file(name);
        std::filesystem::create_directories(std::filesystem::path(path).parent_path());
        writeAudioFile(path, {"wav", "pcm_s16le"}, clicks(44100, 2, seconds, {0.25 * seconds}));
        return path;
    }

    std::vector<std::string> arguments(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"scan", "--catalogue", catalogue_, "--jobs", "2"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    /** Scans the folder. */
    ToolRun scan(std::vector<std::string> more = {}) const {
        more.push_back(music_.path());
        return runTool(arguments(more));
    }

    /** The closing line of a scan. */
    static std::string told(const std::string& what) { return "beatatlas: " + what + "\n"; }

    TemporaryFolder music_;
    TemporaryFolder place_;
    std::string catalogue_ = place_.file("c.sqlite");
    CatalogueFile stored_{catalogue_};
};

}  // namespace test
