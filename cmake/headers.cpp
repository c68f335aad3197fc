// SPDX-License-Identifier: MIT
// The target that owns the compiled headers needs a file.
