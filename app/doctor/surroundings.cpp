// SPDX-License-Identifier: MIT
#include "doctor/surroundings.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <fmt/format.h>
#include <pango/pangocairo.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "base/displayName.h"
#include "base/errors.h"
#include "cli/CommandLine.h"
#include "cli/ConfigFile.h"
#include "media/temporaryFile.h"
#include "media/writeFully.h"

namespace app {

namespace {

/** Why a file there does not keep what is written to it; empty when it does. */
std::string faultOfFile(const std::string& folder) {
    constexpr std::string_view kText = "beatatlas";
    const int descriptor = media::openNameless(folder);
    if (descriptor == -1) return base::systemReason(errno);
    const int failure = media::writeFully(descriptor, kText.data(), kText.size());
    std::string back(kText.size(), '\0');
    const ssize_t count = pread(descriptor, back.data(), back.size(), 0);
    close(descriptor);
    if (failure != 0) return base::systemReason(failure);
    const bool isSame = count == static_cast<ssize_t>(kText.size()) && back == kText;
    return isSame ? "" : "what was written there does not come back";
}

int countFontFamilies() {
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(pango_cairo_font_map_get_default(), &families, &count);
    g_free(families);
    return count;
}

/** So that a process just forked says nothing and leaves no core dump, however it ends. */
void leaveNoTrace() {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDERR_FILENO);
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

/** How many families of fonts there are; nothing where that cannot be found out. GLib ends the
 *  process that runs short of memory or threads, so that a process of its own looks. */
std::optional<int> fontFamilies() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
    const pid_t looker = fork();
    if (looker == 0) {
        leaveNoTrace();
        const int count = countFontFamilies();
        _exit(write(ends[1], &count, sizeof count) == sizeof count ? 0 : 1);
    }
    close(ends[1]);
    int count = 0;
    const bool isTold = looker > 0 && read(ends[0], &count, sizeof count) == sizeof count;
    close(ends[0]);
    if (looker > 0) waitpid(looker, nullptr, 0);
    return isTold ? std::optional(count) : std::nullopt;
}

}  // namespace

std::vector<AudioFormat> usualFormats() {
    return {{"MP3", "mp3", AV_CODEC_ID_MP3},        {"AAC", "mov", AV_CODEC_ID_AAC},
            {"ALAC", "mov", AV_CODEC_ID_ALAC},      {"FLAC", "flac", AV_CODEC_ID_FLAC},
            {"WAV", "wav", AV_CODEC_ID_PCM_S16LE},  {"AIFF", "aiff", AV_CODEC_ID_PCM_S16BE},
            {"Vorbis", "ogg", AV_CODEC_ID_VORBIS},  {"Opus", "ogg", AV_CODEC_ID_OPUS},
            {"WavPack", "wv", AV_CODEC_ID_WAVPACK}, {"WMA", "asf", AV_CODEC_ID_WMAV2}};
}

Check checkLibraries(const std::vector<Library>& libraries) {
    std::vector<std::string> unfit;
    for (const Library& library : libraries)
        if (!library.fits())
            unfit.push_back(
                fmt::format("{} {}, built with {}", library.name, library.running, library.built));
    if (unfit.empty()) return {"libraries", Outcome::ok, "as new as those of the build"};
    return {"libraries", Outcome::failed, fmt::format("{}", fmt::join(unfit, "; "))};
}

Check checkDecoders(const std::vector<AudioFormat>& formats) {
    std::vector<std::string> there;
    std::vector<std::string> missing;
    for (const AudioFormat& format : formats) {
        const bool isThere = avcodec_find_decoder(format.codec) != nullptr &&
                             av_find_input_format(format.container) != nullptr;
        (isThere ? there : missing).emplace_back(format.name);
    }
    if (missing.empty())
        return {"decoders", Outcome::ok, fmt::format("{}", fmt::join(there, ", "))};
    return {"decoders", Outcome::failed,
            fmt::format("this FFmpeg cannot read {}", fmt::join(missing, ", "))};
}

Check checkFonts() {
    const std::optional<int> count = fontFamilies();
    if (!count)
        return {"fonts", Outcome::failed,
                "cannot be looked for: too little memory, or no further process is allowed"};
    if (*count > 0)
        return {"fonts", Outcome::ok,
                fmt::format("{} {} for the words of pictures", *count,
                            *count == 1 ? "family" : "families")};
    return {"fonts", Outcome::note, "none: words in pictures are drawn in plain Latin letters"};
}

Check checkTemporaryFolder(const std::string& folder) {
    const std::string shown = base::displayName(folder);
    const std::string fault = faultOfFile(folder);
    if (fault.empty()) return {"temp folder", Outcome::ok, shown};
    return {"temp folder", Outcome::failed, shown + ": " + fault};
}

Check checkSettings(const std::string& path) {
    if (path.empty()) return {"settings", Outcome::ok, "no file of settings"};
    try {
        const ConfigFile file(path);
        CommandLine commandLine;
        for (const auto& command : commandLine.commands())
            if (command->takesSettings()) file.applyTo(commandLine.parser(), {command->name()});
    } catch (const base::UsageError& error) {
        return {"settings", Outcome::failed, error.what()};
    }
    return {"settings", Outcome::ok, base::displayName(path)};
}

}  // namespace app
