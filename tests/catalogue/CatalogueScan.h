// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "catalogue/Scan.h"
#include "catalogue/StoredTracks.h"
#include "catalogue/TrackStore.h"
#include "support/TemporaryFolder.h"

namespace catalogue {

inline const std::string kParameters = parametersText(test::everything());

/** A catalogue, and a folder in which its tracks may be. */
class CatalogueScan : public testing::Test {
protected:
    static constexpr FileState kState = {1000, 5};
    const base::TrackFormat kFormat = {
        "flac", "flac", 2, 44100, 44100, false, {"Somebody", "New Title"}};

    /** A file that exists. */
    std::string fileNamed(const std::string& name) {
        const std::string path = music_.file(name);
        test::writeFile(path, "sound");
        return path;
    }

    void put(const std::string& path, int sound) {
        test::store(catalogue_, {test::analysedTrack(path, sound)});
    }

    std::int64_t idOf(const std::string& path) {
        return TrackStore(catalogue_).find(path).value_or(-1);
    }

    Scan::Counts countsOf(const Scan::Plan& plan, const std::vector<std::string>& paths,
                          const FileState& state = kState) {
        Scan scan(catalogue_, plan);
        for (const std::string& path : paths) scan.found(path, state, 1.0);
        return scan.settle();
    }

    test::TemporaryFolder folder_;
    test::TemporaryFolder music_;
    Catalogue catalogue_{folder_.file("c.sqlite"), Catalogue::Access::create};
};

}  // namespace catalogue
