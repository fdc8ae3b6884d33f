#!/usr/bin/env python3
"""Runs every example and writes its picture into examples/pictures/.

    python3 examples/gallery.py
"""
import importlib
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
EXAMPLES = ["demo", "curve_modes", "symbols", "legends", "errors_and_areas", "fill_patterns",
            "contours", "shields", "bars", "pies", "colour_matrix", "hidden_surfaces", "maps",
            "formulas"]


def main():
    sys.path.insert(0, HERE)
    out = os.path.join(HERE, "pictures")
    os.makedirs(out, exist_ok=True)
    for name in EXAMPLES:
        mod = importlib.import_module(name)
        draw = getattr(mod, "draw", None) or getattr(mod, "draw_page")
        draw("PNG", os.path.join(out, name + ".png"))
        print("wrote", os.path.join("examples", "pictures", name + ".png"))
        extra = getattr(mod, "draw_3d", None)
        if extra:
            extra("PNG", os.path.join(out, name + "3d.png"))
            print("wrote", os.path.join("examples", "pictures", name + "3d.png"))


if __name__ == "__main__":
    main()
