// SPDX-License-Identifier: MIT
#include "cli/StoredExport.h"

#include <algorithm>
#include <utility>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "catalogue/CatalogueError.h"
#include "cli/declaredOptions.h"
#include "cli/messages.h"
#include "cli/storedTrack.h"
#include "media/OutputFile.h"

namespace app {

namespace {

using output::ExportFormat;

constexpr const char* kGroup = "Instead of FILE, tracks of a catalogue";

}  // namespace

void StoredExport::declare(CLI::App& arguments) {
    options_ = declaredOptions(arguments, [&] {
        argument_.declare(arguments);
        filters_.declare(arguments, "--text");
    });
    for (const CLI::Option* option : options_)
        arguments.get_option("--" + option->get_lnames().front())->group(kGroup);
}

bool StoredExport::isAskedFor() const {
    return firstGiven(options_) != nullptr;
}

void StoredExport::open(const ExportFormat& format, bool withWaves) {
    format_ = &format;
    withWaves_ = withWaves;
    if (format.tells == ExportFormat::Tells::peaksAlone)
        throw base::UsageError("a catalogue does not hold what " + format.name +
                               " is made of: name the files");
    filters_.settle();
    catalogue_ = std::make_unique<catalogue::Catalogue>(argument_.path(),
                                                        catalogue::Catalogue::Access::readBriefly);
    query_ = filters_.queryIn(*catalogue_);
}

std::vector<std::string> StoredExport::paths() {
    std::vector<std::string> paths;
    chosen_.emplace();
    listTracks(*catalogue_, query_, [&](const base::ListedTrack& entry) {
        base::Interrupt::check();
        chosen_->push_back({entry.id, entry.path});
        paths.push_back(entry.path);
    });
    return paths;
}

void StoredExport::refuseToReplace(const std::string& file) const {
    if (isOfCatalogue(file))
        throw base::UsageError("the result would replace the catalogue, or a file beside it that "
                               "belongs to it");
    catalogue::TrackStore store(*catalogue_);
    if (findStored(store, file))
        throw base::UsageError("the result would replace a track of the catalogue");
}

/** By names too: what lies beside the catalogue comes and goes. */
bool StoredExport::isOfCatalogue(const std::string& file) const {
    if (media::OutputFile::isSameFile(catalogue_->path(), file)) return true;
    const std::vector<std::string> names = catalogueNames(file);
    for (const std::string& own : catalogueNames(catalogue_->filePath())) {
        const auto isOwn = [&](const std::string& name) { return catalogue::isFileOf(own, name); };
        if (std::any_of(names.begin(), names.end(), isOwn)) return true;
    }
    return false;
}

bool StoredExport::handOver(const TrackReceiver& receiver) const {
    bool allWhole = true;
    std::size_t number = 0;
    const auto next = [&](const Chosen& chosen) {
        allWhole = handOver(chosen, number, receiver) && allWhole;
        ++number;
    };
    if (chosen_) {
        for (const Chosen& chosen : *chosen_) next(chosen);
    } else {
        listTracks(*catalogue_, query_, [&](const base::ListedTrack& entry) {
            next({entry.id, entry.path});
        });
    }
    return allWhole;
}

bool StoredExport::handOver(const Chosen& chosen, std::size_t number,
                            const TrackReceiver& receiver) const {
    base::Interrupt::check();
    const auto fail = [&](const char* reason) {
        printFileError(chosen.path, reason);
        receiver.takeFailure(chosen.path, reason);
        return false;
    };
    ExportedTrack track;
    try {
        receiver.prepare(number);
        static_cast<output::TrackReport&>(track) = readStored(*catalogue_, chosen.id).report;
        refuseWhatIsMissing(track);
    } catch (const base::TrackError& error) {
        return fail(error.what());
    } catch (const catalogue::DamagedRecord& damage) {
        return fail(damage.what());
    }
    receiver.take(number, std::move(track));
    return true;
}

/** @throws TrackError when the track was analysed without what the format is about */
void StoredExport::refuseWhatIsMissing(const output::TrackReport& report) const {
    const beatatlas::track::Options& options = report.options;
    if (format_->tells == ExportFormat::Tells::beatsAlone &&
        options.tempo == beatatlas::track::TempoMode::off)
        throw base::TrackError("was analysed without its tempo: the catalogue has no beats of it");
    if (withWaves_ && !options.wantsWaves)
        throw base::TrackError("was analysed without its waves: the catalogue has none of it");
}

}  // namespace app
