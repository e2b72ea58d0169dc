# SPDX-License-Identifier: MIT
"""The version and the number of the binary interface, which those of the C headers must equal."""

__version__ = "0.1.0"

#: Stands in the file names of the libraries.
INTERFACE = 1
