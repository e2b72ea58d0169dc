// SPDX-License-Identifier: MIT
#include "media/Container.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "base/Interrupt.h"
#include "media/end/FileBytes.h"

namespace media {

namespace {

// Containers by FFmpeg's names. Whatever else FFmpeg can open is not music, or opens further files.
constexpr std::array<std::string_view, 31> kAudioContainers = {
    "aac",    "ac3",  "aiff", "amr", "ape",  "asf",      "au",  "avi", "caf", "dsf",  "dts",
    "eac3",   "flac", "flv",  "iff", "loas", "matroska", "mov", "mp3", "mpc", "mpc8", "mpeg",
    "mpegts", "ogg",  "rm",   "shn", "tak",  "tta",      "w64", "wav", "wv"};

// A tag with a large cover picture may stand before the first byte that shows what the file is.
constexpr unsigned kProbeBytes = 16U << 20;

// Below this, FFmpeg has found only what occurs by chance too: a lone frame header in arbitrary
// bytes.
constexpr int kLeastProbeScore = 2;

/** FFmpeg's names are lists: "mov,mp4,m4a". */
bool hasName(std::string_view names, std::string_view wanted) {
    while (!names.empty()) {
        const std::size_t comma = std::min(names.find(','), names.size());
        if (names.substr(0, comma) == wanted) return true;
        names.remove_prefix(std::min(comma + 1, names.size()));
    }
    return false;
}

bool isAudioContainer(const AVInputFormat& format) {
    return std::any_of(kAudioContainers.begin(), kAudioContainers.end(),
                       [&](std::string_view name) { return hasName(format.name, name); });
}

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

/** Empty when there is no tag of that name; case does not matter. */
std::string tagOf(const AVDictionary* tags, const char* name) {
    const AVDictionaryEntry* tag = av_dict_get(tags, name, nullptr, 0);
    return tag == nullptr ? std::string() : tag->value;
}

/** What FFmpeg has to be told about bytes without a container. */
class OpeningOptions {
public:
    explicit OpeningOptions(const std::optional<RawFormat>& raw) {
        if (!raw) return;
        av_dict_set_int(&options_, "sample_rate", raw->rate, 0);
        av_dict_set(&options_, "ch_layout", (std::to_string(raw->channels) + "c").c_str(), 0);
    }
    ~OpeningOptions() { av_dict_free(&options_); }
    OpeningOptions(const OpeningOptions&) = delete;
    OpeningOptions& operator=(const OpeningOptions&) = delete;

    AVDictionary** get() { return &options_; }

private:
    AVDictionary* options_ = nullptr;
};

}  // namespace

Container::Container(FileInput& input) : input_(input) {
    open(recognise());
    chooseStream();
    if (isFormat("ogg")) surveyPages();
}

void Container::surveyPages() {
    const OggSurvey survey = surveyOgg(input_);
    const bool isDamaged = !survey.isSound && !survey.isChained;
    if (isDamaged && OggPackets::knows(stream_->codecpar->codec_id))
        oggPackets_.emplace(input_, *stream_);
    lacksEnd_ = !survey.hasEnd;
}

const AVInputFormat* Container::recognise() const {
    if (const auto& raw = input_.rawFormat()) return av_find_input_format(raw->samples.c_str());
    const AVInputFormat* format = nullptr;
    const int score =
        av_probe_input_buffer2(input_.context(), &format, "", nullptr, 0, kProbeBytes);
    if (score < kLeastProbeScore || format == nullptr || !isAudioContainer(*format)) {
        refuse(score, "is not an audio file of a known kind", base::TrackError::Kind::notAudio);
    }
    return format;
}

void Container::open(const AVInputFormat* format) {
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) throw std::bad_alloc();
    context->pb = input_.context();
    context->io_open = refuseToOpen;
    // On failure FFmpeg frees the context itself and sets the pointer to null.
    OpeningOptions options(input_.rawFormat());
    const int opened = avformat_open_input(&context, "", format, options.get());
    context_.reset(context);
    if (opened < 0) refuse(opened, "is damaged or cut off: its header cannot be read");
    const int found = avformat_find_stream_info(context, nullptr);
    if (found < 0)
        refuse(found, "is damaged or cut off: nothing in it can be decoded",
               base::TrackError::Kind::undecodable);
}

void Container::chooseStream() {
    const int index = av_find_best_stream(context_.get(), AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    if (index < 0) refuse(index, "holds no audio", base::TrackError::Kind::notAudio);
    for (unsigned i = 0; i < context_->nb_streams; ++i)
        context_->streams[i]->discard = AVDISCARD_ALL;
    stream_ = context_->streams[index];
    stream_->discard = AVDISCARD_DEFAULT;
}

void Container::refuse(int error, const char* otherwise, base::TrackError::Kind kind) const {
    base::Interrupt::check();
    input_.requireReadable();
    if (error == AVERROR(ENOMEM)) throw std::bad_alloc();
    throw base::TrackError(otherwise, kind);
}

bool Container::next(AVPacket& packet) {
    if (oggPackets_) {
        base::Interrupt::check();
        return oggPackets_->next(packet);
    }
    for (;;) {
        const int result = av_read_frame(context_.get(), &packet);
        base::Interrupt::check();
        if (result == AVERROR(EAGAIN)) continue;
        if (result < 0 && result != AVERROR_EOF && result != AVERROR_EXIT && resume()) continue;
        if (result < 0) {
            failure_ = result == AVERROR_EOF ? 0 : result;
            return false;
        }
        packetEnd_ = std::max(packetEnd_, packet.pos + packet.size);
        if (packet.stream_index == stream_->index) return true;
        av_packet_unref(&packet);
    }
}

/** Continues behind an offset that cannot be read, later each time, so that the end is reached. */
bool Container::resume() {
    AVIOContext* bytes = input_.context();
    std::int64_t place = avio_tell(bytes);
    if (isFormat("wv")) {
        place = findInFile(input_, "wvpk", std::max(lastFailureAt_ + 1, packetEnd_), input_.size());
        if (place < 0) return false;
    }
    if (place <= lastFailureAt_ || place >= input_.size()) return false;
    lastFailureAt_ = place;
    return avio_seek(bytes, place, SEEK_SET) >= 0;
}

bool Container::isFormat(const char* name) const {
    return hasName(context_->iformat->name, name);
}

std::string Container::writer() const {
    const std::string program = tagOf(context_->metadata, "encoder");
    return program.empty() ? tagOf(context_->metadata, "software") : program;
}

std::string Container::encoder() const {
    return tagOf(stream_->metadata, "encoder");
}

base::TrackTags Container::tags() const {
    const auto tag = [&](const char* name) {
        const std::string own = tagOf(stream_->metadata, name);
        return own.empty() ? tagOf(context_->metadata, name) : own;
    };
    return {tag("artist"), tag("title")};
}

bool Container::endsWithinFrame() const {
    const auto& raw = input_.rawFormat();
    return raw && input_.size() % raw->bytesPerFrame() != 0;
}

std::optional<double> Container::declaredSeconds() const {
    if (const auto& raw = input_.rawFormat())
        return static_cast<double>(input_.size() / raw->bytesPerFrame()) / raw->rate;
    const bool isGuess = context_->duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
    if (isGuess || stream_->duration == AV_NOPTS_VALUE || stream_->duration <= 0)
        return std::nullopt;
    return static_cast<double>(stream_->duration) * av_q2d(stream_->time_base);
}

}  // namespace media
