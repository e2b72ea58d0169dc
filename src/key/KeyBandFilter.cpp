// SPDX-License-Identifier: MIT
#include "key/KeyBandFilter.h"

namespace beatatlas {

const KeyBandFilter::Design KeyBandFilter::k44100 = {
    {0.09762616, 0.19525232, -0.94276158, 0.33326621},
    {0.98897751950022, -1.97795503900044, -1.97783357652409, 0.97807650147679}};

const KeyBandFilter::Design KeyBandFilter::k48000 = {
    {0.08493054820474352, 0.16986109640948704, -1.02354633811534, 0.36326853093431405},
    {0.9898700538456696, -1.9797401076913392, -1.979637499890312, 0.9798427154923666}};

void KeyBandFilter::create(int rate) {
    design_ = rate == 44100 ? k44100 : k48000;
    reset();
}

void KeyBandFilter::reset() {
    lowPasses_ = {};
    highPasses_ = {};
}

}  // namespace beatatlas
