// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>

namespace app {

/** Finds the files in and below a folder, in no particular order.
 *
 *  A folder that cannot be read costs what is in it, no more. Where links to folders are followed,
 *  each folder is entered once, by whatever way it is reached first: no circle goes on for ever. */
class FolderWalk {
public:
    struct Options {
        /** Files and folders whose names begin with a dot too. */
        bool takesHidden = false;
        /** Links to folders too; links to files always are. */
        bool followsLinks = false;
    };
    using Found = std::function<void(const std::string& path, const struct stat& status)>;
    /** Takes the reason why a folder could not be read. */
    using Refused = std::function<void(const std::string& folder, const std::string& reason)>;
    /** Takes what is neither a file nor a folder: a pipe, a device. */
    using PassedOver = std::function<void(const std::string& path)>;

    FolderWalk(Options options, Found found, Refused refused, PassedOver passedOver);

    /** @throws Interrupted; whatever the callbacks throw */
    void walk(const std::string& folder);

private:
    void list(const std::string& folder);
    void look(const std::string& folder, const struct dirent& entry);
    void enter(const std::string& folder, const struct stat& status);

    Options options_;
    Found found_;
    Refused refused_;
    PassedOver passedOver_;
    std::vector<std::string> waiting_;
    std::set<std::pair<dev_t, ino_t>> entered_;
};

}  // namespace app
