// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

#include "dsp/truncation.h"
#include "key/CachedFft.h"
#include "key/Progressions.h"

namespace beatatlas::test {

/** All that the key ranking of a track tells. */
struct KeyResults {
    std::array<int, 24> keys{};
    std::array<double, 24> points{};
    std::array<int, 12> counts{};
    std::array<double, 12> values{};
    bool operator==(const KeyResults&) const = default;
};

/** What the ranking is told besides the samples. */
struct PlainKeyPlan {
    int declaredFrames = 0;
    /** By the pre-check. */
    int countedFrames = 0;
};

/** The key ranking in its plainest form, over a whole track at once and without a single buffer:
 *  the oracle of the one that works block by block. Only the transform is shared. Call it in
 *  round-toward-zero. */
class PlainKeyRank {
public:
    PlainKeyRank(const KeyTrack& track, const PlainKeyPlan& plan)
        : rate_(track.rate), samples_(track.samples) {
        rows_ = framesOf(plan.declaredFrames);
        maxFrames_ = framesOf(plan.countedFrames);
        const double average = track.sum * 0.5 / plan.countedFrames;
        duck((track.peak - average) * 0.75 + average);
        filter();
        layBands();
        measure();
        encounter();
        rank(chroma());
    }

    const KeyResults& results() const { return results_; }
    int framesAnalysed() const { return static_cast<int>(spectra_.size()); }

private:
    using Row = std::vector<double>;

    int framesOf(int frames) const {
        return static_cast<int>(static_cast<double>(frames / 4 / (rate_ / 4)) / 0.3);
    }

    void duck(double threshold) {
        const int pre = rate_ * 10 / 1000;
        const int post = rate_ * 40 / 1000;
        const int frames = static_cast<int>(samples_.size() / 2);
        const auto at = [this](int i) -> std::int16_t& {
            return samples_[static_cast<std::size_t>(i)];
        };
        for (int p = pre; p <= frames - post - 1; ++p) {
            const int left = std::abs(int{at(2 * p)});
            const int right = std::abs(int{at(2 * p + 1)});
            if (!(static_cast<double>(right > left ? right : left) > threshold)) continue;
            double gain = 1.0;
            double step = -0.875 / pre;
            for (int i = p - pre; i <= p + post - 1; ++i) {
                for (int channel : {0, 1})
                    at(2 * i + channel) = truncToInt16(at(2 * i + channel) * gain);
                gain += step;
                if (step < 0.0 && gain <= 0.125) {
                    gain = 0.125;
                    step = 0.875 / post;
                } else if (step > 0.0 && gain >= 1.0) {
                    gain = 1.0;
                }
            }
        }
    }

    void section(std::vector<double>& x, double b0, double b1, double a1, double a2) const {
        double s1 = 0.0;
        double s2 = 0.0;
        for (double& value : x) {
            const double in = value;
            const double y = s1 + b0 * in;
            s1 = b1 * in - a1 * y + s2;
            s2 = b0 * in - a2 * y;
            value = y;
        }
    }

    void filter() {
        std::vector<double> x;
        for (std::size_t i = 0; i < samples_.size(); i += 2)
            x.push_back((int{samples_[i]} + int{samples_[i + 1]}) * 0.5);
        for (int i = 0; i < 8; ++i) {
            if (rate_ == 44100)
                section(x, 0.09762616, 0.19525232, -0.94276158, 0.33326621);
            else
                section(x, 0.08493054820474352, 0.16986109640948704, -1.02354633811534,
                        0.36326853093431405);
        }
        for (int i = 0; i < 2; ++i) {
            if (rate_ == 44100)
                section(x, 0.98897751950022, -1.97795503900044, -1.97783357652409,
                        0.97807650147679);
            else
                section(x, 0.9898700538456696, -1.9797401076913392, -1.979637499890312,
                        0.9798427154923666);
        }
        for (double value : x) filtered_.push_back(truncToInt16(value));
    }

    void layBands() {
        for (double f = 110.0; f < 28160.0; f *= 2.0)
            for (int s = 0; s < 12; ++s) {
                const double lower = f * std::pow(2.0, (s - 0.5) / 12.0);
                if (lower <= 20000.0)
                    bands_.push_back({lower, f * std::pow(2.0, (s + 0.5) / 12.0)});
            }
    }

    Row bandsOfFrame(std::size_t start) {
        std::vector<double> re(4096);
        std::vector<double> im(4096);
        for (std::size_t k = 0; k < 4096; ++k) {
            const double angle = 6.283185307179586 * static_cast<double>(k) / 4096.0;
            re[k] = filtered_[start + 4 * k] * (0.5 - 0.5 * std::cos(angle));
        }
        fft_.fft(4096, re.data(), im.data());
        Row row;
        for (const auto& [lower, upper] : bands_) {
            double largest = 0.0;
            for (std::size_t bin = 0; bin < 2048; ++bin) {
                const double hz =
                    static_cast<double>(bin) * static_cast<double>(rate_ / 4) / 4096.0;
                const double magnitude = std::sqrt(re[bin] * re[bin] + im[bin] * im[bin]);
                if (lower <= hz && hz < upper) largest = std::max(largest, magnitude);
            }
            row.push_back(largest);
        }
        return row;
    }

    void measure() {
        const auto hop = static_cast<std::size_t>(rate_ * 0.3);
        for (std::size_t start = 0; start + 16384 <= filtered_.size(); start += hop)
            if (framesAnalysed() < maxFrames_) spectra_.push_back(bandsOfFrame(start));
    }

    void encounter() {
        Row totals(bands_.size());
        for (const Row& row : spectra_)
            for (std::size_t b = 0; b < row.size(); ++b) totals[b] += row[b];
        std::vector<std::pair<double, int>> list(12, {0.0, -1});
        list[0] = {totals[0], 0};
        for (int k = 1; k < static_cast<int>(totals.size()); ++k)
            for (int place = 0; place < std::min(k, 12); ++place) {
                const double total = totals[static_cast<std::size_t>(k)];
                if (!(total > list[static_cast<std::size_t>(place)].first)) continue;
                list.insert(list.begin() + place, {total, k});
                list.pop_back();
                break;
            }
        for (const auto& [total, band] : list) {
            if (band < 0) continue;
            results_.counts[static_cast<std::size_t>(band % 12)] += 1;
            results_.values[static_cast<std::size_t>(band % 12)] += total;
        }
        double sum = 0.0;
        for (double value : results_.values) sum += value;
        for (double& value : results_.values) value /= sum > 0.0 ? sum : 1.0;
    }

    double spectrumAt(int frame, int band) const {
        if (frame >= rows_ || frame >= framesAnalysed()) return 0.0;
        return spectra_[static_cast<std::size_t>(frame)][static_cast<std::size_t>(band)];
    }

    std::array<double, 12> chroma() const {
        std::array<double, 12> out{};
        for (int f = 0; f < maxFrames_; ++f)
            for (int b = 0; b < 60; ++b) {
                double sum = 0.0;
                for (int t = 0; t <= 10; t += 2) {
                    double both = spectrumAt(std::min(f + t / 2, maxFrames_ - 1), b);
                    if (t != 0 && t != 10) both += spectrumAt(std::max(f - t / 2, 0), b);
                    sum += (1.0 - t / 12.0) * both;
                }
                out[static_cast<std::size_t>(b % 12)] += sum;
            }
        return out;
    }

    void exchangeSort() {
        for (std::size_t i = 0; i < 24; ++i)
            for (std::size_t j = i + 1; j < 24; ++j)
                if (results_.points[j] > results_.points[i]) {
                    std::swap(results_.points[i], results_.points[j]);
                    std::swap(results_.keys[i], results_.keys[j]);
                }
    }

    void rank(const std::array<double, 12>& c) {
        const int offsets[2][7] = {{0, 2, 4, 5, 7, 9, 11}, {0, 2, 3, 5, 7, 8, 10}};
        const double weights[7] = {0.26086956521739130, 0.08695652173913043, 0.13043478260869565,
                                   0.08695652173913043, 0.21739130434782608, 0.08695652173913043,
                                   0.13043478260869565};
        for (int k = 0; k < 24; ++k) {
            double score = 0.0;
            for (int j = 0; j < 7; ++j)
                score += c[static_cast<std::size_t>((k + offsets[k / 12][j]) % 12)] * weights[j];
            results_.points[static_cast<std::size_t>(k)] = score;
            results_.keys[static_cast<std::size_t>(k)] = k;
        }
        exchangeSort();
        for (;;) {
            const int tonic = results_.keys[0] % 12;
            if (tonic != results_.keys[1] % 12) return;
            const double d = c[static_cast<std::size_t>((tonic + 4) % 12)] -
                             c[static_cast<std::size_t>((tonic + 3) % 12)];
            if (results_.keys[0] < 12 && d < 0.0)
                results_.points[0] += d;
            else if (results_.keys[0] >= 12 && d > 0.0)
                results_.points[0] -= d;
            else
                return;
            exchangeSort();
        }
    }

    int rate_;
    std::vector<std::int16_t> samples_;
    int rows_ = 0;
    int maxFrames_ = 0;
    std::vector<std::int16_t> filtered_;
    std::vector<std::pair<double, double>> bands_;
    CachedFft fft_;
    std::vector<Row> spectra_;
    KeyResults results_;
};

}  // namespace beatatlas::test
