// SPDX-License-Identifier: MIT
#include "track/Outcome.h"

#include <new>
#include <stdexcept>

#include <cxxabi.h>

namespace beatatlas::track::inner {

// Only the unwinding of a cancelled thread is passed on: the C++ runtime ends the process if it is
// swallowed. Any other unknown exception was thrown by a callback of the host.
void Outcome::failWithCaught() {
    try {
        throw;
    } catch (abi::__forced_unwind&) {
        fail(BA_TRACK_STOPPED);
        throw;
    } catch (const Failure& failure) {
        fail(failure.status);
    } catch (const std::bad_alloc&) {
        fail(BA_TRACK_NO_MEMORY);
    } catch (const std::length_error&) {
        fail(BA_TRACK_NO_MEMORY);
    } catch (...) {
        fail(BA_TRACK_STOPPED);
    }
}

void Outcome::fail(int status) {
    int none = BA_TRACK_OK;
    status_.compare_exchange_strong(none, status);
}

}  // namespace beatatlas::track::inner
