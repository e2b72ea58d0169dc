// SPDX-License-Identifier: MIT
#include "output/formats/trackNames.h"

#include <filesystem>

#include "base/displayName.h"

namespace output {

namespace {

std::string clean(const std::string& tag) {
    return tag.empty() ? tag : base::displayName(tag);
}

}  // namespace

std::string artistOf(const base::TrackSource& file) {
    return clean(file.format.tags.artist);
}

std::string titleOf(const base::TrackSource& file) {
    return clean(file.format.tags.title);
}

std::string trackName(const base::TrackSource& file) {
    const std::string artist = artistOf(file);
    const std::string title = titleOf(file);
    if (title.empty())
        return base::displayName(std::filesystem::path(file.path).filename().string());
    return artist.empty() ? title : artist + " - " + title;
}

}  // namespace output
