#!/usr/bin/python3
"""make_fonts.py NODE_MODULES OUT: writes the fonts that Vorli uses, and their licences, to OUT.

The text face is published as static files. The display face is published as one variable font with an axis of optical
sizes; Vorli uses its design for 9 points. No package has that design as static files, so this script makes three
instances of it.
"""

import pathlib
import shutil
import sys

from fontTools.ttLib import TTFont
from fontTools.varLib import instancer

TEXT_FACES = ("Regular", "Medium", "SemiBold")
DISPLAY_FAMILY = "Fraunces 9pt"
DISPLAY_FACES = (  # style of the source, weight, name of the face
    ("normal", 300, "Light"),
    ("normal", 400, "Regular"),
    ("italic", 300, "Light Italic"),
)
# Records of the name table for the family and the face; in the source they name the variable font.
COPIED_NAMES = {0, 5, 8, 9, 11, 13, 14}
WINDOWS_ENGLISH = (3, 1, 0x409)


def rename(font, face, italic):
    """Renames the instance: Qt finds it by family, weight and slope."""
    postscript = DISPLAY_FAMILY.replace(" ", "") + "-" + face.replace(" ", "")
    light = face.startswith("Light")
    names = font["name"]
    names.names = [record for record in names.names if record.nameID in COPIED_NAMES]
    for identifier, text in (
        (1, DISPLAY_FAMILY + (" Light" if light else "")),
        (2, "Italic" if italic else "Regular"),
        (3, f"1.000;{postscript}"),
        (4, f"{DISPLAY_FAMILY} {face}"),
        (6, postscript),
        (16, DISPLAY_FAMILY),
        (17, face),
    ):
        names.setName(text, identifier, *WINDOWS_ENGLISH)
    return postscript


def cut_display_face(source, weight, face, out):
    italic = face.endswith("Italic")
    font = instancer.instantiateVariableFont(TTFont(source), {"opsz": 9, "wght": weight, "SOFT": 0, "WONK": 0})
    font.flavor = None
    font["OS/2"].usWeightClass = weight
    postscript = rename(font, face, italic)
    font.save(out / f"{postscript}.ttf")


def licence_of(package):
    found = [file for file in package.iterdir() if file.name.lower().split(".")[0] in ("license", "licence", "ofl")]
    if len(found) != 1:
        sys.exit(f"{package} has {len(found)} licence files")
    return found[0]


def main(modules, out):
    out.mkdir(parents=True, exist_ok=True)
    text, display = modules / "geist", modules / "@fontsource-variable" / "fraunces"
    for face in TEXT_FACES:
        shutil.copyfile(text / "dist" / "fonts" / "geist-sans" / f"Geist-{face}.ttf", out / f"Geist-{face}.ttf")
    for style, weight, face in DISPLAY_FACES:
        cut_display_face(display / "files" / f"fraunces-latin-full-{style}.woff2", weight, face, out)
    shutil.copyfile(licence_of(text), out / "Geist-LICENSE.txt")
    shutil.copyfile(licence_of(display), out / "Fraunces-LICENSE.txt")


if __name__ == "__main__":
    main(pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]))
