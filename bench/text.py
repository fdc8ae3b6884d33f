#!/usr/bin/env python3
"""Stroke text against Pillow's TrueType text, in one run.

Draws 10,000 strings of 20 characters on the default PNG page (853 by 603
pixels), once with the library's default and complex stroke fonts through
messag, and once with Pillow's ImageDraw.text and a TrueType font whose
capital height is the same number of pixels; both write the PNG.  Prints the
times and the ratio library / Pillow (below 1 is faster).

    KOLVEX_BUILD_DIR=build python3 bench/text.py [--strings N]
"""
import argparse
import os
import random
import sys
import tempfile
import time

build = os.environ.get("KOLVEX_BUILD_DIR")
if build:
    sys.path.insert(0, os.path.abspath(build))

import kolvex  # noqa: E402

FONT = "/usr/share/fonts/truetype/liberation2/LiberationSans-Regular.ttf"
ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"


def strings(n, seed=3):
    rnd = random.Random(seed)
    out = []
    for _ in range(n):
        s = "".join(rnd.choice(ALPHABET) for _ in range(20))
        out.append((s, rnd.randrange(0, 2400), rnd.randrange(0, 2000)))
    return out


def library(items, path, font):
    kolvex.metafl("PNG")
    kolvex.setfil(path)
    kolvex.filmod("DELE")
    kolvex.errmod("ALL", "OFF")
    t0 = time.perf_counter()
    kolvex.kolini()
    kolvex.errmod("ALL", "OFF")
    getattr(kolvex, font)()
    kolvex.height(36)
    for s, x, y in items:
        kolvex.messag(s, x, y)
    kolvex.kolfin()
    return time.perf_counter() - t0


def pillow(items, path, px_cap):
    from PIL import Image, ImageDraw, ImageFont

    # a font size whose capital height is px_cap pixels
    size = max(4, round(px_cap / 0.729))
    # the simple layout engine: the faster of Pillow's two
    font = ImageFont.truetype(FONT, size, layout_engine=ImageFont.Layout.BASIC)
    s = 853 / 2970
    t0 = time.perf_counter()
    im = Image.new("L", (853, 603), 0)
    d = ImageDraw.Draw(im)
    for text, x, y in items:
        d.text((x * s, y * s), text, font=font, fill=255)
    im.save(path)
    return time.perf_counter() - t0


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--strings", type=int, default=10000)
    a = ap.parse_args()
    items = strings(a.strings)
    with tempfile.TemporaryDirectory() as tmp:
        px_cap = 35 * 853 / 2970
        tp = pillow(items, os.path.join(tmp, "pil.png"), px_cap)
        for font in ("kolalf", "complx"):
            tl = library(items, os.path.join(tmp, f"{font}.png"), font)
            print(f"{a.strings} strings of 20 characters, {font}: library {tl:.3f} s, "
                  f"Pillow {tp:.3f} s, ratio {tl / tp:.2f}")


if __name__ == "__main__":
    main()
