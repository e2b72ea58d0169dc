# SPDX-License-Identifier: MIT
"""The version, which that of the C headers must equal."""

__version__ = "0.1.0"
