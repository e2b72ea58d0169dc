// SPDX-License-Identifier: MIT
// Nothing of its own: the target that holds the precompiled headers of the tests needs a source.
