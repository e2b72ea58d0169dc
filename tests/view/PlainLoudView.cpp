// SPDX-License-Identifier: MIT
#include "view/PlainLoudView.h"

#include <algorithm>
#include <cmath>

namespace beatatlas::test {

namespace {

struct Section {
    double b0, b1, b2, a1, a2;
};

enum class Kind { High, Low, Band };

Section design(Kind kind, double hz, double rate, float q) {
    const double w0 = hz * 6.28318530717958 / rate;
    const double s = std::sin(w0);
    const double c = std::cos(w0);
    const double alpha = s / (static_cast<double>(q) + static_cast<double>(q));
    const double n = 1.0 + alpha;
    const double a1 = -2.0 * c / n;
    const double a2 = (1.0 - alpha) / n;
    if (kind == Kind::Band) return {alpha / n, 0.0, -alpha / n, a1, a2};
    if (kind == Kind::High) {
        const double b0 = 0.5 * (c + 1.0) / n;
        return {b0, -(c + 1.0) / n, b0, a1, a2};
    }
    const double b0 = 0.5 * (1.0 - c) / n;
    return {b0, (1.0 - c) / n, b0, a1, a2};
}

std::vector<double> run(const Section& f, const std::vector<double>& x) {
    std::vector<double> y(x.size());
    for (std::size_t n = 0; n < x.size(); ++n) {
        const double x1 = n > 0 ? x[n - 1] : 0.0, x2 = n > 1 ? x[n - 2] : 0.0;
        const double y1 = n > 0 ? y[n - 1] : 0.0, y2 = n > 1 ? y[n - 2] : 0.0;
        y[n] = f.b0 * x[n] + f.b1 * x1 + f.b2 * x2 - f.a1 * y1 - f.a2 * y2;
    }
    return y;
}

int truncated(float v) {
    return static_cast<int>(v);
}

int dbStep(float s) {
    if (s <= 0.0F) return 0;
    const float step =
        static_cast<float>(20.0 * std::log10(static_cast<double>(s / 32768.0F))) + 30.5F;
    return truncated(std::min(std::max(step, 0.0F), 30.0F));
}

int loudColor(int a, int b, int c) {
    if (a < 14) {
        if (b - c < 4) return 5;
        return 4;
    }
    if (b - c < 0) {
        if (a - c > 0) return 2;
        return 3;
    }
    if (a - b > 0) return 0;
    return 1;
}

}  // namespace

std::vector<float> plainBand(int band, int rate, const std::vector<float>& in) {
    const double r = rate;
    std::vector<Section> cascade;
    if (band == 0) {
        cascade.assign(2, design(Kind::Band, 150.0, r, 0.9F));
    } else if (band == 1) {
        const Section high = design(Kind::High, 283.0, r, 0.70710677F);
        const Section low = design(Kind::Low, 6000.0, r, 0.70710677F);
        cascade = {high, low, high, low};
    } else {
        cascade.assign(2, design(Kind::High, 6000.0, r, 0.70710677F));
    }
    std::vector<double> signal(in.begin(), in.end());
    for (const Section& section : cascade) signal = run(section, signal);
    std::vector<float> rectified;
    for (const double v : signal) rectified.push_back(std::abs(static_cast<float>(v)));
    return rectified;
}

PlainLoudView::PlainLoudView(int rate, std::int64_t len)
    : loud(400, {0.0F, 5}), dots(100, {0.0F, 5}), rate_(rate), len_(len), block_(rate / 75),
      averages_(400, 0.0F) {
    const float b = static_cast<float>((len + block_ - 1) / block_);
    p2_ = b * 0.005F;
    pa_ = b * 0.0025F;
    pd_ = len / block_ < 100 ? 1 : len / block_ / 100;
    for (auto& records : records_) {
        records.resize(40000);
        records[0] = {0.01F, 0.01F};
    }
    for (auto& points : loudSums_) points.assign(400, 0.0F);
    for (auto& points : dotsSums_) points.assign(100, 0);
}

void PlainLoudView::feed(const Samples& in, const std::array<Samples, 3>& given) {
    std::array<Samples, 3> bands = given;
    for (std::size_t band = 0; band < 3; ++band)
        if (bands[band].empty())
            bands[band] = plainBand(static_cast<int>(band), static_cast<int>(rate_), in);
    const auto size = static_cast<std::size_t>(block_);
    for (std::size_t at = 0; at < in.size(); at += size) {
        const std::size_t end = std::min(at + size, in.size());
        const auto cut = [&](const Samples& from) {
            Samples scaled;
            for (std::size_t i = at; i < end; ++i) scaled.push_back(from[i] * 32768.0F);
            return scaled;
        };
        chunk(cut(in), {cut(bands[0]), cut(bands[1]), cut(bands[2])});
    }
}

void PlainLoudView::chunk(const Samples& in, const std::array<Samples, 3>& bands) {
    ++chunkCounter_;
    for (int band = 0; band < 3; ++band) detect(band, bands[static_cast<std::size_t>(band)]);
    for (int band = 0; band < 2; ++band)
        detectDecimated(band, bands[static_cast<std::size_t>(band)]);
    average(in);
    averageToPoint();
    for (int band = 0; band < 3; ++band)
        if (sums_[static_cast<std::size_t>(band)].index <= 399) sumBand(band);
    int ready = std::min({averageIndex_, sums_[0].index, sums_[1].index, sums_[2].index});
    if (detectors_[0].end && detectors_[1].end && detectors_[2].end) ready = 400;
    finaliseLoud(ready);
    for (int band = 0; band < 2; ++band)
        if (sums_[static_cast<std::size_t>(band + 3)].index <= 99) dotsSum(band);
    finaliseDots(detectors_[3].end && detectors_[4].end ? 100
                                                        : std::min(sums_[3].index, sums_[4].index));
}

bool PlainLoudView::isLast(const Detector& d, std::size_t m, std::size_t i) const {
    const auto place = static_cast<std::int64_t>(i);
    const auto full = static_cast<std::int64_t>(m) == block_;
    return full ? d.chunks * static_cast<std::int64_t>(m) + place == len_ - 1
                : place + block_ * d.chunks == len_ - 1;
}

void PlainLoudView::detect(int band, const Samples& x) {
    const float r = band == 2 ? 0.66F : 0.75F;
    Detector& d = detectors_[static_cast<std::size_t>(band)];
    std::vector<Record>& rec = records_[static_cast<std::size_t>(band)];
    float h = rec[static_cast<std::size_t>(d.records)].level;
    int decay = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        d.count += 1;
        if (rec[0].level == 0.01F) {
            if (x[i] > 0.01F) {
                rec[0].level = x[i];
                d.count = 0;
                d.records = 1;
                h = x[i];
                if (band == 0) lowPeakFlag_ = true;
            }
        } else if ((h > 0.01F && x[i] >= r * h) || (h <= 0.01F && x[i] >= 0.01F)) {
            if (static_cast<double>(d.count) >= rate_ * 0.32) {
                if (band == 0) lowPeakFlag_ = true;
                rec[static_cast<std::size_t>(d.records - 1)].level = h;
                d.records += 1;
                d.count = 0;
                decay = 0;
                h = x[i];
            } else if (x[i] > h) {
                h = x[i];
            }
        } else if (static_cast<double>(d.count) > rate_ * 1.714) {
            decay += 1;
            if (decay == static_cast<int>(rate_ / 44100.0 * 512.0)) {
                h = h * 0.9938303F > 0.01F ? h * 0.9938303F : 0.01F;
                decay = 0;
            }
        } else {
            decay = 0;
        }
        if (isLast(d, x.size(), i)) {
            rec[static_cast<std::size_t>(d.records)].level = h;
            d.records += 1;
            d.end = true;
        }
    }
    rec[static_cast<std::size_t>(d.records)].level = h;
    d.chunks += 1;
}

void PlainLoudView::detectDecimated(int band, const Samples& x) {
    Detector& d = detectors_[static_cast<std::size_t>(band + 3)];
    std::vector<Record>& rec = records_[static_cast<std::size_t>(band)];
    float held = rec[static_cast<std::size_t>(d.records)].level900;
    float g = 0.0F;
    int decay = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        d.count += 1;
        g = std::max(g, x[i]);
        const bool last = isLast(d, x.size(), i);
        const bool shortChunk = static_cast<std::int64_t>(x.size()) < block_;
        if (d.count % 4 != 0 && !(shortChunk && last)) continue;
        if (rec[0].level900 == 0.01F) {
            if (g > 327.68F) {
                rec[0].level900 = g;
                d.records = 1;
                d.count = 0;
                held = g;
            }
        } else if ((held > 327.68F && g >= 0.75F * held) || (held <= 327.68F && g >= 327.68F)) {
            if (static_cast<double>(d.count) >= rate_ * 0.32) {
                rec[static_cast<std::size_t>(d.records)].level900 = held;
                d.records += 1;
                d.count = 0;
                decay = 0;
                held = g;
            } else if (g > held) {
                held = g;
            }
        } else if (static_cast<double>(d.count) > rate_ * 1.714) {
            decay += 4;
            if (decay >= static_cast<int>(rate_ / 44100.0 * 512.0)) {
                held = std::max(327.68F, held * 0.9938303F);
                decay = 0;
            }
        } else {
            decay = 0;
        }
        if (last) {
            rec[static_cast<std::size_t>(d.records)].level900 = held;
            d.records += 1;
            d.end = true;
        }
        g = 0.0F;
    }
    rec[static_cast<std::size_t>(d.records)].level900 = held;
    d.chunks += 1;
}

void PlainLoudView::average(const Samples& x) {
    for (const float v : x) averageSum_ += std::abs(v);
    averageChunks_ += 1;
    produced_ = averageChunks_ >= 9 || lowPeakFlag_;
    if (!produced_) return;
    averageValue_ = averageSum_ / static_cast<float>(averageChunks_ * static_cast<int>(block_));
    if (mergePending_) {
        merge_ = true;
        mergePending_ = false;
    }
    if (lowPeakFlag_) mergePending_ = true;
    averageChunks_ = 0;
    lowPeakFlag_ = false;
    averageSum_ = 0.0F;
}

void PlainLoudView::averageToPoint() {
    int target = std::min(truncated(static_cast<float>(chunkCounter_) / pa_), 399);
    if (detectors_[0].end) target = 400;
    const auto point = [&](int k) -> float& { return averages_[static_cast<std::size_t>(k)]; };
    if (averageIndex_ < 400) point(averageIndex_) = averageRunning_;
    if (target > averageIndex_) {
        point(averageIndex_) = averageRunning_ * 75.0F / (pa_ + pa_);
        for (int k = averageIndex_ + 1; k <= target && k < 400; ++k) point(k) = 0.0F;
        averageIndex_ = target;
    }
    if (produced_ && averageIndex_ < 400) {
        if (merge_) {
            const bool current = lastAveraged_ == averageIndex_;
            point(lastAveraged_) += current ? averageValue_ : averageValue_ * 75.0F / (pa_ + pa_);
        } else {
            point(averageIndex_) += averageValue_;
            lastAveraged_ = averageIndex_;
        }
        merge_ = false;
    }
    if (averageIndex_ < 400) averageRunning_ = point(averageIndex_);
}

void PlainLoudView::sumBand(int band) {
    const Detector& d = detectors_[static_cast<std::size_t>(band)];
    Sum& s = sums_[static_cast<std::size_t>(band)];
    if (d.end) {
        peakSum(band, s.summed, d.records);
        s.summed = d.records;
    } else if (d.records - s.summed >= 2) {
        peakSum(band, s.summed, d.records - 1);
        s.summed = d.records - 1;
    }
}

void PlainLoudView::peakSum(int band, int from, int to) {
    Sum& s = sums_[static_cast<std::size_t>(band)];
    std::vector<float>& points = loudSums_[static_cast<std::size_t>(band)];
    points[static_cast<std::size_t>(s.index)] = s.running;
    s.carry = static_cast<float>(chunkCounter_ - s.previousChunk) + s.carry;
    s.previousChunk = chunkCounter_;
    for (int k = from; k < to; ++k) {
        if (s.carry >= p2_ && !slotBoundary(s, points)) return;
        if (k == to - 1 && detectors_[static_cast<std::size_t>(band)].end) continue;
        const Record& record =
            records_[static_cast<std::size_t>(band)][static_cast<std::size_t>(k)];
        s.running += static_cast<float>(truncated(record.level));
        points[static_cast<std::size_t>(s.index)] = s.running;
    }
}

bool PlainLoudView::slotBoundary(Sum& s, std::vector<float>& points) const {
    if (s.index > 399) return false;
    s.running = s.running * 75.0F / (p2_ + p2_);
    points[static_cast<std::size_t>(s.index)] = s.running;
    points[static_cast<std::size_t>(s.index + 1)] = s.running;
    s.carry -= p2_;
    int next = s.index + 2;
    while (s.carry >= p2_ && next < 400) {
        points[static_cast<std::size_t>(next)] = 0.0F;
        points[static_cast<std::size_t>(next + 1)] = 0.0F;
        s.carry -= p2_;
        next += 2;
    }
    s.index = next;
    if (next >= 400) return false;
    points[static_cast<std::size_t>(next)] = 0.0F;
    s.running = 0.0F;
    return true;
}

void PlainLoudView::dotsSum(int band) {
    const Detector& d = detectors_[static_cast<std::size_t>(band + 3)];
    Sum& s = sums_[static_cast<std::size_t>(band + 3)];
    std::vector<int>& points = dotsSums_[static_cast<std::size_t>(band)];
    const auto dot = [&](int k) -> int& { return points[static_cast<std::size_t>(k)]; };
    const int target =
        d.end ? 100 : static_cast<int>(std::min<std::int64_t>(chunkCounter_ / pd_, 99));
    dot(s.index) = s.dotRunning;
    if (target > s.index) {
        dot(s.index) = (s.dotRunning * 75) / (static_cast<int>(pd_) * 2);
        for (int k = s.index + 1; k <= target && k < 100; ++k) dot(k) = 0;
        s.index = target;
    }
    if (d.records > s.summed && s.index < 100 && chunkCounter_ > 50)
        dot(s.index) += truncated(
            records_[static_cast<std::size_t>(band)][static_cast<std::size_t>(s.summed)].level900);
    if (s.index < 100) s.dotRunning = dot(s.index);
    s.summed = d.records;
}

void PlainLoudView::finaliseLoud(int ready) {
    for (; loudReady < ready; ++loudReady) {
        const auto k = static_cast<std::size_t>(loudReady);
        const float avg = averages_[k];
        const float low = loudSums_[0][k];
        const float factor = low / 32768.0F * 0.75F + 0.25F;
        const float value = (factor < 1.0F ? factor : 1.0F) * avg;
        const int a = dbStep(0.5F * low);
        const int b = dbStep(0.25F * loudSums_[1][k]);
        const int c = dbStep(1.0F * loudSums_[2][k]);
        loud[k] = {value, loudColor(a, b, c)};
    }
}

void PlainLoudView::finaliseDots(int ready) {
    for (; dotsReady < ready; ++dotsReady) {
        const auto k = static_cast<std::size_t>(dotsReady);
        const int a = dotsSums_[0][k];
        const int b = dotsSums_[1][k];
        dots[k].level = a != 0 ? static_cast<float>(a) : b != 0 ? 1.0F : 0.0F;
    }
}

}  // namespace beatatlas::test
