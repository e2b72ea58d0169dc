// SPDX-License-Identifier: MIT
#include "beatatlas/beatatlas.h"
#include "beatatlas/beatatlas.hpp"
