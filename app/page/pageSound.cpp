// SPDX-License-Identifier: MIT
#include "page/pageSound.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <system_error>

#include "base/errors.h"
#include "click/ClickMixer.h"
#include "media/copyTrack.h"
#include "output/textFormat.h"

namespace app {

namespace {

constexpr const char* kEnding = ".opus";
constexpr std::int64_t kBitRate = 128000;

std::optional<media::AudioKind> soundKind() {
    for (media::AudioKind kind : media::audioKinds()) {
        if (std::string_view(kind.ending) != kEnding) continue;
        kind.bitRate = kBitRate;
        return kind;
    }
    return std::nullopt;
}

/** A folder of its own, gone in the end. */
class ScratchFolder {
public:
    /** @throws OutputError */
    ScratchFolder() {
        std::error_code failure;
        std::string path =
            (std::filesystem::temp_directory_path(failure) / "beatatlas-XXXXXX").string();
        if (failure || mkdtemp(path.data()) == nullptr)
            throw base::OutputError("no temporary folder can be made: " +
                                    base::systemReason(failure ? failure.value() : errno));
        path_ = path;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

void replaceUnheard(media::StereoBlock& block) {
    for (auto* channel : {&block.left, &block.right})
        std::transform(channel->begin(), channel->end(), channel->begin(), heardSample);
}

std::string bytesOfFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    if (!file) throw base::OutputError("the encoded sound cannot be read back");
    return std::move(bytes).str();
}

}  // namespace

std::optional<std::string> encodedSound(const std::string& trackPath,
                                        const beatatlas::track::TrackResult& analysis,
                                        std::int64_t mostBytes,
                                        const std::function<void(double)>& shown) {
    const auto kind = soundKind();
    const double expected = analysis.seconds() * static_cast<double>(kBitRate) / 8.0;
    if (!kind || expected > static_cast<double>(mostBytes)) return std::nullopt;
    const ScratchFolder folder;
    const std::string path = folder.file(std::string("sound") + kEnding);
    media::copyTrack({trackPath, analysis.rate, analysis.frames}, path, *kind, replaceUnheard,
                     shown);
    std::string bytes = bytesOfFile(path);
    // The encoder takes more for some music, and less for most.
    if (static_cast<std::int64_t>(bytes.size()) > mostBytes) return std::nullopt;
    return bytes;
}

std::string addressFrom(const std::string& pagePath, const std::string& trackPath) {
    const std::filesystem::path folder = std::filesystem::path(pagePath).parent_path();
    const auto from = std::filesystem::weakly_canonical(folder.empty() ? "." : folder);
    const auto to = std::filesystem::weakly_canonical(trackPath);
    return output::addressPath(to.lexically_proximate(from).string());
}

}  // namespace app
