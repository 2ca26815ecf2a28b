#!/usr/bin/python3
"""Has CMake plan the application as on a Mac, and looks at the plan: the property list, and what is copied where.

bundle_test.py SOURCE-FOLDER
"""

import pathlib
import plistlib
import subprocess
import sys
import tempfile

RESOURCES = ["BuildInfo.txt", "Marvelode.icns", "Marvelode.png", "MarvelodeGrey.png", "Sonar.m4a", "Bowl.m4a",
             "Whistle.m4a"]


def main():
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(["cmake", "-S", sys.argv[1], "-B", folder, "-G", "Ninja", "-DCMAKE_SYSTEM_NAME=Darwin",
                        "-DCMAKE_CXX_COMPILER=clang++", "-DCMAKE_CXX_COMPILER_WORKS=1",
                        "-DCMAKE_OBJCXX_COMPILER_WORKS=1", "-DCMAKE_INSTALL_NAME_TOOL=/bin/true",
                        "-DMARVELODE_TESTS=OFF"], check=True, stdout=subprocess.DEVNULL)
        contents = pathlib.Path(folder) / "Marvelode Timer.app" / "Contents"
        properties = plistlib.loads((contents / "Info.plist").read_bytes())
        plan = (pathlib.Path(folder) / "build.ninja").read_text()

    expected = {"CFBundleIdentifier": "org.marvelode.Timer", "CFBundleName": "Marvelode Timer",
                "CFBundleExecutable": "Marvelode Timer", "CFBundleIconFile": "Marvelode", "LSUIElement": True,
                "LSMinimumSystemVersion": "11.0", "NSPrincipalClass": "NSApplication"}
    for key, value in expected.items():
        assert properties[key] == value, (key, properties.get(key))
    assert properties["CFBundleShortVersionString"].count(".") == 2, properties["CFBundleShortVersionString"]
    assert properties["CFBundleVersion"].isdigit(), properties["CFBundleVersion"]
    for name in RESOURCES:
        assert f"build Marvelode$ Timer.app/Contents/Resources/{name}: COPY_OSX_CONTENT" in plan, name
    assert "codesign --force --options runtime --sign -" in plan


if __name__ == "__main__":
    main()
