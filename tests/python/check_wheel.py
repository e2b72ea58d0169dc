#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The package as its users get it: built into a wheel and installed into clean environments.

    check_wheel.py build FOLDER SOURCES [BUILD]
    check_wheel.py install FOLDER SOURCES PYTHON
    check_wheel.py lack FOLDER SOURCES

The first makes FOLDER/dist with pip, setuptools and wheel of this system alone, from a copy of the
package, with the libraries of a CMake build or, without one, compiling them. The second installs
that wheel for one Python and runs the package's tests there, which need BEATATLAS_TOOL and
BEATATLAS_DEMO; it ends with 77 where there is no NumPy for that Python, after it has tried what
goes without. NumPy is that of the system, for a Python of the same binary interface, or the one of
BEATATLAS_WHEELS, a folder. The third tries to make one without setuptools, CMake and so on: each
time one sentence has to say what to install.
"""

import json
import os
import platform
import re
import shutil
import subprocess
import sys
import sysconfig
import zipfile
from pathlib import Path

OLDEST = (3, 9)
SKIPPED = 77
LIBRARIES = {"libbeatatlas_track.so", "libbeatatlas_media.so"}

# Through the C interface, which needs no NumPy: the tempo of a file, by the modules as installed.
BARE = """
import ctypes, importlib.util, sys, types
from pathlib import Path
folder = Path(sys.argv[1])
package = types.ModuleType("beatatlas")
package.__path__ = [str(folder)]
sys.modules["beatatlas"] = package
from beatatlas import _library
media, track = _library.media_library(), _library.track_library()
file = ctypes.c_void_p()
status = media.BA_FileAnalyze(sys.argv[2].encode(), None, None, ctypes.byref(file))
print(status, track.BA_TrackBpm(media.BA_FileTrack(file)))
media.BA_FileRelease(file)
"""


def run(*words, expects=0, **options):
    """Nothing of this checkout is to be found by chance: neither by a path nor in the folder."""
    options.setdefault("cwd", "/")
    kept = {name: value for name, value in os.environ.items()
            if name not in ("PYTHONPATH", "BEATATLAS_LIBRARY_PATH", "PYTHONDONTWRITEBYTECODE")}
    found = subprocess.run([str(word) for word in words], capture_output=True, text=True,
                           env={**kept, "PIP_NO_INDEX": "1", "PIP_DISABLE_PIP_VERSION_CHECK": "1",
                                **options.pop("environment", {})}, check=False, **options)
    if (found.returncode == 0) != (expects == 0):
        sys.exit(f"{words}: status {found.returncode}\n{found.stdout}{found.stderr}")
    return found.stdout + found.stderr


def expect(what, found, expected):
    if found != expected:
        sys.exit(f"{what}: {found!r}, not {expected!r}")


def build(folder, sources, libraries=None):
    copy_tree(folder, sources, [] if libraries else needed(sources))
    environment = {"BEATATLAS_BUNDLE": libraries} if libraries else {}
    run(sys.executable, "-m", "pip", "wheel", "--no-build-isolation", "--no-deps", "-w",
        folder / "dist", folder / "tree/python", environment=environment)
    check_contents(wheel_in(folder), sources)


def copy_tree(folder, sources, others):
    """The package, which pip builds where it lies, and what else it takes."""
    shutil.rmtree(folder, ignore_errors=True)
    for name in ["python", *others]:
        place = sources / name
        copy = shutil.copytree if place.is_dir() else shutil.copy2
        (folder / "tree").mkdir(parents=True, exist_ok=True)
        copy(place, folder / "tree" / name)


def needed(sources):
    """What the libraries are built from, as the package's build knows it."""
    text = (sources / "python/setup.py").read_text()
    return re.findall(r'"([\w.]+)"', re.search(r"NEEDED = \((.*?)\)", text, re.S).group(1))


def wheel_in(folder):
    wheel, = (folder / "dist").glob("*.whl")
    return wheel


def check_advice(archive, libraries):
    """Whoever lacks a library that is not in the wheel is told to install it."""
    advice = archive.read("beatatlas/_library.py").decode()
    for library in libraries:
        place = archive.extract(library, Path(archive.filename).parent.parent / "seen")
        needs = re.findall(r"NEEDED.*\[(lib\w+)\.so", run("readelf", "-d", place))
        expect("needed but not advised", [name for name in needs if name not in advice and name not
                                          in ("libm", "libc", "libgcc_s", "libstdc")], [])


def check_contents(wheel, sources):
    tag = f"py3-none-{sysconfig.get_platform().replace('-', '_').replace('.', '_')}.whl"
    expect("tag", wheel.name.split("-", 2)[2], tag)
    with zipfile.ZipFile(wheel) as archive:
        names = archive.namelist()
        modules = {f"beatatlas/{path.name}" for path in (sources / "python/beatatlas").iterdir()
                   if path.is_file()}
        libraries = {name for name in names if ".so" in name}
        info = f"{wheel.name.split('-py3')[0]}.dist-info"
        expect("modules", {name for name in names if name.startswith("beatatlas/")} - libraries,
               modules)
        expect("libraries", {Path(name).name.rsplit(".", 1)[0] for name in libraries}, LIBRARIES)
        expect("licence", archive.read(f"{info}/LICENSE"), (sources / "LICENSE").read_bytes())
        check_advice(archive, libraries)
        metadata = archive.read(f"{info}/METADATA").decode()
    for line in ("Requires-Python: >=3.9", "License: MIT", "Requires-Dist: numpy (>=1.21)"):
        if line not in metadata and line.replace("(", "").replace(")", "") not in metadata:
            sys.exit(f"the metadata lack {line}")


def install(folder, sources, python):
    facts = json.loads(run(python, "-c", "import json, sys, sysconfig; print(json.dumps((sys."
                           "version_info[:3], sysconfig.get_config_var('SOABI'))))"))
    version, interface = tuple(facts[0]), facts[1]
    place = folder / ".".join(map(str, version))
    shutil.rmtree(place, ignore_errors=True)
    run(python, "-m", "venv", place / "venv")
    own = place / "venv/bin/python"
    if version < OLDEST:
        said = run(own, "-m", "pip", "install", "--no-deps", wheel_in(folder), expects=1)
        if not re.search("requires (a different )?Python", said):
            sys.exit(f"it is refused for another reason than its age: {said}")
        return
    run(own, "-m", "pip", "install", "--no-deps", wheel_in(folder))
    site = Path(run(own, "-c", "import sysconfig; print(sysconfig.get_path('purelib'))").strip())
    has_numpy = put_numpy(own, site, interface)
    if has_numpy:
        check_package(own, place, sources, site)
    else:
        check_without_numpy(own, place, site)
    run(own, "-m", "pip", "uninstall", "-y", "beatatlas")
    expect("left behind", sorted(path.name for path in site.glob("*beatatlas*")), [])
    if not has_numpy:
        print(f"skipped: there is no NumPy for Python {platform_name(version)} here")
        sys.exit(SKIPPED)


def platform_name(version):
    return ".".join(map(str, version))


def put_numpy(own, site, interface):
    if interface == sysconfig.get_config_var("SOABI"):
        import numpy
        system = Path(numpy.__file__).parent
        for path in (system, *system.parent.glob("numpy-*-info")):
            (site / path.name).symlink_to(path)
        return True
    folder = os.environ.get("BEATATLAS_WHEELS")
    if not folder or not any(Path(folder).glob("numpy-*.whl")):
        return False
    found = subprocess.run([own, "-m", "pip", "install", "-q", "--no-index", "--find-links", folder,
                            "numpy"], check=False)
    return found.returncode == 0


def check_package(own, place, sources, site):
    run(own, "-m", "pip", "check")
    where = run(own, "-c", "import beatatlas; print(beatatlas.__file__)").strip()
    expect("the module", where, str(site / "beatatlas/__init__.py"))
    # All but those with other packages that the wheel does not ask for.
    others = shutil.ignore_patterns("test_dask.py", "test_pandas.py", "__pycache__")
    shutil.copytree(sources / "python/tests", place / "tests", ignore=others)
    said = run(own, "-m", "unittest", "discover", "-q", "-s", "tests", cwd=place)
    print(re.search(r"Ran \d+ tests.*", said).group(), "on NumPy",
          run(own, "-c", "import numpy; print(numpy.__version__)").strip())


def check_without_numpy(own, place, site):
    run(own, "-m", "compileall", "-q", site / "beatatlas")
    if "No module named 'numpy'" not in run(own, "-c", "import beatatlas", expects=1):
        sys.exit("the import does not say that NumPy is missing")
    track = place / "track.wav"
    run(os.environ["BEATATLAS_DEMO"], track, "--seconds", "30")
    document = json.loads(run(os.environ["BEATATLAS_TOOL"], "analyze", "--json", track))
    expect("status and tempo by the C interface",
           run(own, "-c", BARE, site / "beatatlas", track).split(),
           ["0", str(document["tracks"][0]["tempo"]["bpm"])])


def lack(folder, sources):
    copy_tree(folder, sources, needed(sources))
    package = folder / "tree/python"

    def refused(sentence, python, *words, **environment):
        words = words or ("-m", "pip", "wheel", "--no-build-isolation", "--no-deps", "-w", folder,
                          package)
        said = run(python, *words, expects=1, cwd=package, environment=environment)
        if not re.search(f"^ *beatatlas cannot be built: {sentence}", said, re.M):
            sys.exit(f"{words} does not say: {sentence}\n{said}")
        if "Traceback" in said:
            sys.exit(f"{words} ends in a traceback\n{said}")

    own = folder / "venv/bin/python"
    run(sys.executable, "-m", "venv", folder / "venv")
    python_packages = r".*apt-get install python3-pip python3-setuptools python3-wheel, .*$"
    for module in ("wheel", "setuptools"):
        run(own, "-m", "pip", "uninstall", "-y", module)
        for words in ((), ("setup.py", "bdist_wheel"), ("setup.py", "sdist")):
            refused(rf"{own} \(Python 3.*\) lacks {module}; {python_packages}", own, *words)
    old = folder / "old/setuptools.py"
    old.parent.mkdir()
    old.write_text('__version__ = "58.1.0"')
    refused(r".* has setuptools 58\.1\.0, which is older than 64; .*", sys.executable, "setup.py",
            "sdist", PYTHONPATH=old.parent)
    libraries = "on Debian 12: apt-get install g\\+\\+ cmake .*libavformat-dev .*$"
    refused(f"there is no cmake; {libraries}", sys.executable, PATH=folder)
    refused(f"CMake says above what it did not find; {libraries}", sys.executable,
            PKG_CONFIG_LIBDIR=folder)
    refused('BEATATLAS_BUNDLE must be "no" or the folder of a CMake build, and /nowhere has no',
            sys.executable, BEATATLAS_BUNDLE="/nowhere")
    check_advised(sources)


def check_advised(sources):
    """What is advised is what ./x installs, which has been tried."""
    advised = re.findall(r"[\w.+-]+", " ".join(re.findall(
        r'DEBIAN_\w+ = \(?([^=]*")\)?$', (sources / "python/build_backend.py").read_text(), re.M)))
    installed = re.findall(r"[\w.+-]+", (sources / "x").read_text())
    if len(advised) < 20:
        sys.exit(f"only these packages are advised: {advised}")
    expect("advised, but not installed by ./x", set(advised) - set(installed), set())


def main():
    command, folder, sources, *words = sys.argv[1:]
    print(f"{command} on {platform.platform()}")
    {"build": build, "install": install, "lack": lack}[command](
        Path(folder).resolve(), Path(sources).resolve(), *words)


main()
