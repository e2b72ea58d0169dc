// SPDX-License-Identifier: MIT
// Empty: the target that holds the precompiled headers of the tests needs a source.
