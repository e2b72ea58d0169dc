// SPDX-License-Identifier: MIT
#include "media/PcmStore.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "base/Interrupt.h"

namespace media {

namespace {

// A signal wakes no waiting thread: waiting threads check for one this often.
constexpr std::chrono::milliseconds kLookEvery{50};

}  // namespace

template <class Condition>
void PcmStore::waitFor(Lock& lock, const Condition& condition) {
    while (!condition()) {
        changed_.wait_for(lock, kLookEvery);
        base::Interrupt::check();
    }
}

bool PcmStore::append(const StereoBlock& block) {
    auto chunk = std::make_shared<const PcmChunk>(block, memory_);
    Lock lock(mutex_);
    if (isAbandoned_) return false;
    frames_ += static_cast<std::int64_t>(chunk->frames());
    bytes_ += static_cast<std::int64_t>(chunk->bytes());
    chunks_.push_back(std::move(chunk));
    dropWhatIsRead();
    changed_.notify_all();
    waitFor(lock, [&] { return !mustWait(); });
    return !isAbandoned_;
}

bool PcmStore::mustWait() const {
    return whenFull_ == WhenFull::wait && bytes_ >= limitBytes_ && !isAbandoned_;
}

/** Once a chunk has been dropped no new reader can be added, so only what the present ones need is
 *  kept. */
void PcmStore::dropWhatIsRead() {
    if (bytes_ < limitBytes_ && droppedChunks_ == 0) return;
    std::int64_t needed = droppedChunks_ + std::ssize(chunks_);
    for (const PcmReader* reader : readers_) needed = std::min(needed, reader->nextChunk_);
    for (; droppedChunks_ < needed; ++droppedChunks_) {
        bytes_ -= static_cast<std::int64_t>(chunks_.front()->bytes());
        chunks_.pop_front();
    }
}

void PcmStore::finish() {
    end(nullptr);
}

void PcmStore::fail(std::exception_ptr reason) {
    end(std::move(reason));
}

void PcmStore::end(std::exception_ptr reason) {
    const Lock lock(mutex_);
    hasEnded_ = true;
    failure_ = std::move(reason);
    changed_.notify_all();
}

void PcmStore::abandon() {
    const Lock lock(mutex_);
    isAbandoned_ = true;
    changed_.notify_all();
}

void PcmStore::setLimit(std::int64_t bytes) {
    const Lock lock(mutex_);
    limitBytes_ = bytes;
    dropWhatIsRead();
    changed_.notify_all();
}

void PcmStore::setWhenFull(WhenFull whenFull) {
    const Lock lock(mutex_);
    whenFull_ = whenFull;
}

std::int64_t PcmStore::frames() const {
    const Lock lock(mutex_);
    return frames_;
}

bool PcmStore::isFull() const {
    const Lock lock(mutex_);
    return bytes_ >= limitBytes_;
}

bool PcmStore::isWhole() const {
    const Lock lock(mutex_);
    return droppedChunks_ == 0;
}

bool PcmStore::hasEnded() const {
    const Lock lock(mutex_);
    return hasEnded_;
}

void PcmStore::awaitFirst() {
    Lock lock(mutex_);
    waitFor(lock, [&] { return frames_ > 0 || hasEnded_; });
    if (frames_ == 0 && failure_) std::rethrow_exception(failure_);
}

bool PcmStore::awaitEnd(int milliseconds) {
    Lock lock(mutex_);
    changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), [&] { return hasEnded_; });
    if (failure_) std::rethrow_exception(failure_);
    return hasEnded_;
}

bool PcmStore::beginsWithFloats() const {
    const Lock lock(mutex_);
    return !chunks_.empty() && !chunks_.front()->isInteger();
}

void PcmStore::add(PcmReader& reader) {
    const Lock lock(mutex_);
    readers_.push_back(&reader);
}

void PcmStore::remove(PcmReader& reader) {
    const Lock lock(mutex_);
    std::erase(readers_, &reader);
    dropWhatIsRead();
    changed_.notify_all();
}

bool PcmStore::holds(std::int64_t chunk) const {
    return chunk < droppedChunks_ + std::ssize(chunks_);
}

bool PcmReader::isReady() const {
    if (chunk_ && at_ < chunk_->frames()) return true;
    const PcmStore::Lock lock(store_.mutex_);
    return store_.holds(nextChunk_) || store_.hasEnded_;
}

std::int64_t PcmReader::read(float* left, float* right, std::int64_t frames) {
    if (!chunk_ || at_ == chunk_->frames()) takeNextChunk();
    if (!chunk_) return 0;
    const std::size_t count = std::min(static_cast<std::size_t>(frames), chunk_->frames() - at_);
    chunk_->copy(at_, count, left, right);
    at_ += count;
    return static_cast<std::int64_t>(count);
}

void PcmReader::takeNextChunk() {
    chunk_.reset();
    at_ = 0;
    PcmStore::Lock lock(store_.mutex_);
    store_.waitFor(lock, [&] { return store_.holds(nextChunk_) || store_.hasEnded_; });
    if (!store_.holds(nextChunk_)) {
        if (store_.failure_) std::rethrow_exception(store_.failure_);
        return;
    }
    chunk_ = store_.chunks_[static_cast<std::size_t>(nextChunk_ - store_.droppedChunks_)];
    ++nextChunk_;
    store_.dropWhatIsRead();
    store_.changed_.notify_all();
}

}  // namespace media
