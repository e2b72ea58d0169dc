// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "catalogue/Scan.h"
#include "scan/FolderWalk.h"
#include "scan/Shard.h"

namespace app {

/** Gathers the files of a scan: from folders, playlists, single names, and names on standard
 *  input. What is among them that holds no music shows when it is opened. */
class FileGathering {
public:
    struct Options {
        FolderWalk::Options walk;
        Shard shard;
        /** Of the catalogue, which is not looked for music. */
        std::string catalogue;
        /** Names on standard input end in NUL whatever they look like. */
        bool readsNulNames = false;
        /** Pipes and devices in folders are noted one by one. */
        bool notesAll = false;
    };
    using Found = std::function<void(const std::string& path, const catalogue::FileState& state,
                                     double weight)>;
    using Told = std::function<void(const std::string& path, const std::string& text)>;

    /** @param found    takes each file; the same one may come several times
     *  @param refused  takes what could not be read, and why
     *  @param noted    takes what was left out on purpose, where somebody named it or wants to know
     *                  everything */
    FileGathering(Options options, Found found, Told refused, Told noted);

    /** @param name  a folder, a file, a playlist, or "-" for the names on standard input
     *  @throws Interrupted; whatever the callbacks throw */
    void add(const std::string& name);

    /** The folders that were walked, and what was named and is not there; absolute. */
    const std::vector<catalogue::Scan::Root>& roots() const { return roots_; }

    /** How many pipes, devices and the like there were in folders. */
    std::int64_t noFiles() const { return noFiles_; }

private:
    void addPath(const std::string& path);
    void addFolder(const std::string& path);
    void addList(const std::string& path);
    void refuseUnread(const std::string& path);
    void passOver(const std::string& path);
    void addNames();
    void take(const std::string& path, const struct stat& status);

    Options options_;
    Found found_;
    Told refused_;
    Told noted_;
    std::vector<catalogue::Scan::Root> roots_;
    bool hasSeenFile_ = false;
    std::int64_t noFiles_ = 0;
};

}  // namespace app
