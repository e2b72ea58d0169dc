// SPDX-License-Identifier: MIT
// The tool's command line: its own words, numbers and file names in any order, and any other bytes.
// Commands that parse are run in a folder of their own with a short track in it. No argument can
// name anything outside, because no argument contains a slash or two dots in
// a row.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <fcntl.h>
#include <unistd.h>

#include "FuzzInput.h"
#include "FuzzersRoundingMode.h"
#include "catalogue/Catalogue.h"
#include "cli/Program.h"
#include "cli/commandTable.h"
#include "io/ResultStream.h"
#include "require.h"
#include "support/AudioFileWriter.h"
#include "support/Sounds.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace beatatlas::fuzz;

/** A scan starts this program anew as its workers: those are the tool then. Before anything else of
 *  the fuzzer runs. Names on standard input, which nobody types here, are none. */
__attribute__((constructor)) void becomeWorker(int argc, char** argv, char**) {
    if (argc == 2 && std::string_view(argv[1]) == "scan-worker") execv(BEATATLAS_TOOL, argv);
    const int nothing = open("/dev/null", O_RDONLY);
    if (nothing != -1) dup2(nothing, STDIN_FILENO);
}

constexpr int kMostArguments = 10;
constexpr int kMostRawBytes = 24;
constexpr double kTrackSeconds = 0.05;

/** Words that commands are likely to accept: their names, their options, and values for these. */
std::vector<std::string> likelyWords() {
    std::vector<std::string> words = {
        "track.wav", "noise.bin", "folder", "absent.wav", "out.png",  "out.svg",   "constant",
        "varied",    "simple",    "off",    "4",          "32",       "0",         "-1",
        "1.5",       "1e9",       "nan",    "inf",        "0x10",     "1600",      "--",
        "-",         "",          "[",      "[a,b]",      "--json",   "--help",    "--version",
        "=",         "-o",        "é",      "\x01",       "-o=x.png", "--width=1", "out.opus",
        "8A",        "120:128",   "love",   "table"};
    CLI::App program;
    for (const auto& command : app::makeCommands()) {
        CLI::App* arguments = program.add_subcommand(command->name(), "");
        command->declare(*arguments);
        for (int i = 0; i < 4; ++i) words.push_back(command->name());
        for (const CLI::Option* option : arguments->get_options()) {
            for (const std::string& name : option->get_snames()) words.push_back('-' + name);
            for (const std::string& name : option->get_lnames()) words.push_back("--" + name);
        }
    }
    return words;
}

std::string argumentOf(FuzzInput& input, const std::vector<std::string>& words) {
    const std::uint8_t kind = input.byte();
    if (kind < 200) return words[input.byte() % words.size()];
    std::string raw = kind < 220 ? words[input.byte() % words.size()] : "";
    for (int length = input.between(0, kMostRawBytes); length > 0; --length) {
        const char character = static_cast<char>(input.byte());
        // An argument ends at its first zero byte.
        if (character == '\0') break;
        const bool leadsOutside = character == '/' || (character == '.' && raw.ends_with('.'));
        raw += leadsOutside ? '_' : character;
    }
    return raw;
}

/** The folder in which the commands run; it holds only the track, the noise and a folder. Between
 *  inputs the fuzzer's own folder is the current one again, or it would not find its corpus. */
class Scratch {
public:
    Scratch() : folder_(std::make_unique<test::TemporaryFolder>()) {
        test::writeAudioFile(folder_->file("track.wav"), {"wav", "pcm_s16le"},
                             test::tone(44100, 2, kTrackSeconds, 440.0, 0.5));
        test::writeFile(folder_->file("noise.bin"), "not an audio file, whatever it says");
        std::filesystem::create_directory(folder_->file("folder"));
        kept_ = folder_->names();
        // Of a scan that names no catalogue.
        setenv("XDG_DATA_HOME", folder_->path().c_str(), 1);
    }

    void enter() const {
        if (chdir(folder_->path().c_str()) != 0) std::abort();
    }

    void leave() const {
        if (fchdir(fuzzersFolder_) != 0) std::abort();
        for (const std::string& name : folder_->names()) {
            if (std::find(kept_.begin(), kept_.end(), name) == kept_.end())
                std::filesystem::remove_all(folder_->file(name));
        }
        for (const auto& picture : std::filesystem::directory_iterator(folder_->file("folder")))
            std::filesystem::remove_all(picture);
    }

private:
    std::unique_ptr<test::TemporaryFolder> folder_;
    int fuzzersFolder_ = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    std::vector<std::string> kept_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    static const Scratch scratch;
    // The user's own settings are no part of an input.
    static const int unset = setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
    // Nor is what its standard input may be.
    static const int silence = dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    require(unset == 0 && silence == STDIN_FILENO, "surroundings");
    static const std::vector<std::string> words = likelyWords();
    static const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const FuzzersRoundingMode mode;
    FuzzInput input(bytes, count);
    std::vector<std::string> arguments{"beatatlas"};
    while (!input.isEmpty() && arguments.size() <= kMostArguments)
        arguments.push_back(argumentOf(input, words));
    std::vector<const char*> argv;
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    argv.push_back(nullptr);

    scratch.enter();
    app::ResultStream results(nowhere);
    const int status = app::Program(results).run(static_cast<int>(arguments.size()), argv.data());
    require(status == 0 || status == 1 || status == 2, "an exit status that the help names");
    scratch.leave();
    return 0;
}
