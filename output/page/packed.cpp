// SPDX-License-Identifier: MIT
#include "output/page/packed.h"

#include <array>
#include <memory>
#include <new>

#include <glib.h>

namespace output {

namespace {

constexpr std::size_t kDigestBytes = 32;

const guchar* bytesOf(std::string_view text) {
    return reinterpret_cast<const guchar*>(text.data());
}

struct ChecksumFree {
    void operator()(GChecksum* checksum) const { g_checksum_free(checksum); }
};

}  // namespace

std::string base64(std::string_view bytes) {
    if (bytes.empty()) return {};
    // Without line breaks: four letters for every three bytes that were begun.
    std::string text(bytes.size() / 3 * 4 + 8, '\0');
    gint state = 0;
    gint kept = 0;
    gsize length =
        g_base64_encode_step(bytesOf(bytes), bytes.size(), FALSE, text.data(), &state, &kept);
    length += g_base64_encode_close(FALSE, text.data() + length, &state, &kept);
    text.resize(length);
    return text;
}

std::string policyHash(std::string_view text) {
    const std::unique_ptr<GChecksum, ChecksumFree> checksum(g_checksum_new(G_CHECKSUM_SHA256));
    if (!checksum) throw std::bad_alloc();
    g_checksum_update(checksum.get(), bytesOf(text), static_cast<gssize>(text.size()));
    std::array<guint8, kDigestBytes> digest{};
    gsize length = digest.size();
    g_checksum_get_digest(checksum.get(), digest.data(), &length);
    return "'sha256-" + base64({reinterpret_cast<const char*>(digest.data()), digest.size()}) + "'";
}

}  // namespace output
