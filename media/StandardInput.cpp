// SPDX-License-Identifier: MIT
#include "media/StandardInput.h"

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Interrupt.h"
#include "base/displayName.h"
#include "base/errors.h"
#include "media/temporaryFile.h"
#include "media/writeFully.h"

namespace media {

namespace {

constexpr int kPollMs = 50;
constexpr std::size_t kPieceBytes = std::size_t{1} << 18;

/** What has become of it. */
struct State {
    std::mutex mutex;
    std::optional<RawFormat> rawFormat;
    int descriptor = -1;  ///< of the file, once there is one
};

State& state() {
    static State only;
    return only;
}

[[noreturn]] void refuse(const std::string& what, int errorNumber) {
    throw base::TrackError(what + ": " + base::systemReason(errorNumber));
}

/** Waits in moments, so that a request to stop is noticed. */
void awaitBytes() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    while (poll(&input, 1, kPollMs) <= 0) base::Interrupt::check();
}

class Copy {
public:
    explicit Copy(const std::string& folder) : folder_(folder), descriptor_(openNameless(folder)) {
        if (descriptor_ == -1) fail(errno);
    }
    ~Copy() {
        if (descriptor_ != -1) close(descriptor_);
    }
    Copy(const Copy&) = delete;
    Copy& operator=(const Copy&) = delete;

    void fill() {
        std::vector<char> piece(kPieceBytes);
        for (;;) {
            awaitBytes();
            const ssize_t count = read(STDIN_FILENO, piece.data(), piece.size());
            base::Interrupt::check();
            if (count == 0) return;
            if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
            if (count < 0) refuse("standard input cannot be read", errno);
            const int failure =
                writeFully(descriptor_, piece.data(), static_cast<std::size_t>(count));
            if (failure != 0) fail(failure);
        }
    }

    int release() { return std::exchange(descriptor_, -1); }

private:
    [[noreturn]] void fail(int errorNumber) const {
        refuse("standard input cannot be kept in " + base::displayName(folder_), errorNumber);
    }

    std::string folder_;
    int descriptor_;
};

int copyOfPipe() {
    Copy copy(temporaryFolder());
    copy.fill();
    return copy.release();
}

/** A regular file that nobody has begun to read, as the shell's '<' gives it. */
bool isWholeFile() {
    struct stat status = {};
    return fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode) &&
           lseek(STDIN_FILENO, 0, SEEK_CUR) == 0;
}

int makeReadable() {
    if (isatty(STDIN_FILENO) != 0)
        throw base::TrackError("is standard input, which is a terminal: nothing is piped into it");
    return isWholeFile() ? STDIN_FILENO : copyOfPipe();
}

}  // namespace

void StandardInput::setRawFormat(std::optional<RawFormat> format) {
    state().rawFormat = std::move(format);
}

const std::optional<RawFormat>& StandardInput::rawFormat() {
    return state().rawFormat;
}

int StandardInput::open() {
    State& input = state();
    const std::lock_guard lock(input.mutex);
    if (input.descriptor == -1) input.descriptor = makeReadable();
    const int own = fcntl(input.descriptor, F_DUPFD_CLOEXEC, 0);
    if (own == -1) refuse("standard input cannot be opened", errno);
    return own;
}

}  // namespace media
