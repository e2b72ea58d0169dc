// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

namespace base {

/** A track that cannot be analysed. The text is the reason alone, without the file's name. */
class TrackError : public std::runtime_error {
public:
    enum class Kind {
        /** It is there, and is no whole track. */
        damaged,
        /** Some of it looks like audio, and nothing in it can be decoded. */
        undecodable,
        /** It holds no audio of a known kind: a picture, a text. */
        notAudio,
        /** The system does not let it be read. */
        unreadable,
        /** There is no such file. */
        missing,
    };

    explicit TrackError(const std::string& reason, Kind kind = Kind::damaged)
        : std::runtime_error(reason), kind_(kind) {}

    Kind kind() const { return kind_; }

private:
    Kind kind_;
};

/** Results that cannot be written. The text names what could not be written and why. */
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** A command line that asks for something impossible. */
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Why nothing is done with the name "", which the system would call a missing file. */
inline constexpr const char* kEmptyName = "is an empty name, which no file has";

/** The system's message for an errno value. */
std::string systemReason(int errorNumber);

}  // namespace base
