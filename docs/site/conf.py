# SPDX-License-Identifier: MIT
"""Settings of the documentation site: docs/ as pages, the headers by way of Doxygen's XML, the
Python package by its docstrings. Built by build_site.sh, which names the folder of the XML."""

import ctypes
import os
import re
import sys
from pathlib import Path
from unittest.mock import MagicMock

sources = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(sources / "python"))
# The package is read, never run: the pages need none of the libraries.
ctypes.CDLL = MagicMock()

project = "Beat Atlas"
copyright = "Beat Atlas, MIT licence"
version = ".".join(re.findall(r"^#define BEATATLAS_VERSION_(?:MAJOR|MINOR|PATCH) (\d+)$",
                              (sources / "include/beatatlas/version.h").read_text(), re.M))
release = version

extensions = ["myst_parser", "breathe", "sphinx.ext.autodoc", "sphinx.ext.napoleon"]
exclude_patterns = ["site"]
myst_heading_anchors = 4
breathe_projects = {project: os.environ["BEATATLAS_DOXYGEN_XML"]}
breathe_default_project = project
breathe_domain_by_extension = {"h": "c", "hpp": "cpp"}
# These headers have names of C++ linkage, two of which overload.
breathe_domain_by_file_pattern = {"*/dsp.h": "cpp", "*/utilities.h": "cpp"}
autodoc_member_order = "bysource"
# Results are made by the package, not by its users.
autodoc_class_signature = "separated"
autodoc_default_options = {"exclude-members": "__init__, __new__"}
napoleon_use_ivar = True
autodoc_typehints = "description"
autodoc_typehints_description_target = "documented"
# Needed on clusters only.
autodoc_mock_imports = ["distributed"]

# What links of the documents lead to when they leave docs/.
PAGES = {"(../examples/cluster/README.md)": "(guides/cluster.md)"}


def setup(app):
    app.connect("source-read", lead_to_pages)
    app.connect("build-finished", mend_theme)


def lead_to_pages(app, name, text):
    for place, page in PAGES.items():
        text[0] = text[0].replace(place, page)


def mend_theme(app, error):
    """Debian's Furo takes a style from a web server's folder, and its script is a module, which
    browsers do not load from files. Here both become plain files of the site."""
    if error:
        return
    static = Path(app.outdir, "_static")
    style = static / "styles/furo.css"
    style.write_text(style.read_text().replace(
        "@import url(/javascript/normalize.css/normalize.css);",
        Path("/usr/share/javascript/normalize.css/normalize.css").read_text()))
    script = static / "scripts/furo.js"
    script.write_text((static / "scripts/gumshoe-patched.js").read_text() + script.read_text().replace(
        'import Gumshoe from "./gumshoe-patched.js";', ""))


html_theme = "furo"
# Furo's own dark colours, which Debian's copy shows to those alone who ask the page for them, and
# not to those whose system is dark.
html_theme_options = {"dark_css_variables": {
    "color-problematic": "#ee5151",
    "color-foreground-primary": "#ffffffcc",
    "color-foreground-secondary": "#9ca0a5",
    "color-foreground-muted": "#81868d",
    "color-foreground-border": "#666666",
    "color-background-primary": "#131416",
    "color-background-secondary": "#1a1c1e",
    "color-background-hover": "#1e2124ff",
    "color-background-hover--transparent": "#1e212400",
    "color-background-border": "#303335",
    "color-background-item": "#444",
    "color-brand-primary": "#2b8cee",
    "color-brand-content": "#4b9cf2",
    "color-highlighted-background": "#083563",
    "color-api-keyword": "var(--color-foreground-secondary)",
    "color-api-name": "#ff8a80",
    "color-api-pre-name": "#ff8a80",
    "color-highlight-on-target": "#333300",
    "color-card-border": "var(--color-background-secondary)",
    "color-card-background": "#18181a",
    "color-card-marginals-background": "var(--color-background-hover)",
}}
html_title = f"Beat Atlas {version}"
html_copy_source = False
# Pages opened as files may not read each other.
html_show_search_summary = False
html_static_path = ["static"]
html_css_files = ["site.css"]
pygments_style = "tango"
pygments_dark_style = "github-dark"
highlight_language = "text"
