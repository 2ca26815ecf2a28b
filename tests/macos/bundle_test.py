#!/usr/bin/python3
"""Has CMake plan the application and its tests as on a Mac, and looks at the plan: the property list, what is copied
where, for which processors and systems it is compiled, how it is signed.

bundle_test.py SOURCE-FOLDER FOLDER-OF-CMAKE-PACKAGES
"""

import json
import pathlib
import plistlib
import subprocess
import sys
import tempfile

SOUNDS = [file.name for file in (pathlib.Path(sys.argv[1]) / "resources").glob("*.m4a")]
RESOURCES = ["BuildInfo.txt", "Marvelode.icns", "Marvelode.png", "MarvelodeGrey.png", *SOUNDS]


def main():
    presets = json.loads((pathlib.Path(sys.argv[1]) / "CMakePresets.json").read_text())["configurePresets"]
    preset = next(each for each in presets if each["name"] == "macos")["cacheVariables"]
    assert preset["MARVELODE_WARNINGS_AS_ERRORS"] is False, "Apple's compiler may know warnings nobody has seen yet"
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cmake", "-S", sys.argv[1], "-B", folder, "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=Darwin",
                        "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_CXX_COMPILER_WORKS=1",
                        "-DCMAKE_OBJCXX_COMPILER_WORKS=1", "-DCMAKE_INSTALL_NAME_TOOL=/bin/true",
                        "-DCMAKE_OSX_SYSROOT=macosx", "-Wno-dev", f"-DGTest_DIR={sys.argv[2]}/GTest",
                        f"-Drapidcheck_DIR={sys.argv[2]}/rapidcheck",
                        "-DCMAKE_OSX_ARCHITECTURES=" + preset["CMAKE_OSX_ARCHITECTURES"],
                        "-DCMAKE_OSX_DEPLOYMENT_TARGET=" + preset["CMAKE_OSX_DEPLOYMENT_TARGET"]],
                       check=True, stdout=subprocess.DEVNULL)
        contents = pathlib.Path(folder) / "Marvelode Timer.app" / "Contents"
        build_info = (pathlib.Path(folder) / "resources" / "BuildInfo.txt").read_text().splitlines()
        properties = plistlib.loads((contents / "Info.plist").read_bytes())
        plan = (pathlib.Path(folder) / "build.ninja").read_text()
        commands = json.loads((pathlib.Path(folder) / "compile_commands.json").read_text())

    expected = {"CFBundleIdentifier": "org.marvelode.Timer", "CFBundleName": "Marvelode Timer",
                "CFBundleExecutable": "Marvelode Timer", "CFBundleIconFile": "Marvelode", "LSUIElement": True,
                "LSMinimumSystemVersion": "11.0", "NSPrincipalClass": "NSApplication"}
    for key, value in expected.items():
        assert properties[key] == value, (key, properties.get(key))
    assert properties["CFBundleShortVersionString"].count(".") == 2, properties["CFBundleShortVersionString"]
    assert properties["CFBundleVersion"].isdigit(), properties["CFBundleVersion"]
    for name in RESOURCES:
        assert f"build Marvelode$ Timer.app/Contents/Resources/{name}: COPY_OSX_CONTENT" in plan, name
    assert [line.split("=")[0] for line in build_info] == ["Build", "Date", "Version"], build_info
    for command in commands:
        for flag in ("-arch arm64", "-arch x86_64", "-mmacosx-version-min=11.0"):
            assert flag in command["command"], command
    for test in ("contract_macos", "stories_macos", "messages_macos"):
        assert f"build tests/macos/{test}.app/Contents/MacOS/{test} " in plan, test
    assert not [command["file"] for command in commands if "/shims/" in command["file"]]
    assert "codesign --force --options runtime --sign -" in plan


if __name__ == "__main__":
    main()
