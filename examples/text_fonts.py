"""Every font with the repertoire of each alphabet, and a page of the text
settings: UTF-8 input, national letters, angles, slant, width factors,
justification, frames, backgrounds, exponents and the instruction alphabet.

Writes text_fonts_<font>.png/.svg (one page a font) and text_features.png/.svg
into the current directory (or the directory given as the first argument).
"""
import os
import sys

import kolvex as k

FONTS = ["kolalf", "simplx", "complx", "duplx", "triplx", "gothic", "helve", "helves", "helvet", "serif"]
LATIN1 = "ÄÖÜäöüßÅØÆåøæÑñÇçËÏëïÁÉÍÓÚáéíóúÀÈÌÒÙàèìòùÂÊÎÔÛâêîôûÃãÕõÝýÿ¡¿ÐðÞþ¤©"
ASCII = "".join(chr(c) for c in range(33, 127))


def session(name, device):
    k.metafl(device)
    k.setfil(f"{name}.{device.lower()}")
    k.filmod("DELE")
    k.setpag("DA4L")
    if device == "PNG":
        k.winsiz(2100, 1485)
    k.kolini()
    k.errmod("PROTOCOL", "OFF")


def code_set_text(values):
    """A str whose UTF-8 bytes hold each byte wanted in the order given.

    Python hands strings over as UTF-8, so a byte of 128 or above of another
    code set is reached as part of a UTF-8 sequence: a continuation byte
    after 0xD7, or a lead byte followed by continuation bytes (0x80, or the
    least the sequence allows).  The companion bytes are 128 to 160, which
    the ISO code sets draw as blanks.  Bytes 0xF5 to 0xFF never occur in
    UTF-8 and cannot be given from Python."""
    out = []
    for v in values:
        if 0x80 <= v <= 0xBF:
            seq = [0xD7, v]
        elif 0xC2 <= v <= 0xDF:
            seq = [v, 0x80]
        elif 0xE0 <= v <= 0xEF:
            seq = [v, 0xA0 if v == 0xE0 else 0x80, 0x80]
        elif 0xF0 <= v <= 0xF4:
            seq = [v, 0x90 if v == 0xF0 else 0x80, 0x80, 0x80]
        else:
            continue
        out.append(bytes(seq).decode("utf-8"))
    return "".join(out)


def font_page(font, device):
    session(f"text_fonts_{font}", device)
    getattr(k, font)()
    k.height(34)
    k.messag(f"{font}: every alphabet of the font", 80, 60)
    y = 130
    k.height(30)
    rows = [("STAN", ASCII[:47]), ("STAN", ASCII[47:])]
    for alf in ("GREE", "MATH", "ITAL", "SCRI", "RUSS"):
        rows.append((alf, ASCII[32:58] + " " + ASCII[64:90]))
    for alf, text in rows:
        k.basalf(alf)
        k.messag(text, 80, y)
        y += 70
    k.basalf("STAN")
    k.chacod("UTF8")
    k.messag(LATIN1, 80, y)
    y += 70
    k.smxalf("MATH", "<", ">", 2)
    k.messag("MATHEMATIC 127 to 162: <" + "".join(chr(c) for c in range(127, 163)) + ">", 80, y)
    y += 70
    k.messag("Greek: ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ αβγδεζηθικλμνξοπρστυφχψω ΆΈΉΊΌΎΏ άέήίόύώς", 80, y)
    y += 70
    k.messag("Cyrillic: АБВГДЕЁЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯ абвгдеёжзийклмнопрстуфхцчшщъыьэюя", 80, y)
    y += 70
    # the letters of ISO 8859-2 and -3, capitals and small letters apart;
    # only complx accepts the whole national repertoire, the other fonts
    # stop at their section limit and draw the rest as blanks
    for cs in ("ISO2", "ISO3") if font == "complx" else ():
        k.chacod(cs)
        for lo, hi in ((0xA1, 0xC0), (0xC0, 0xE0), (0xE0, 0xF5)):
            k.messag(cs + ": " + code_set_text(range(lo, hi)), 80, y)
            y += 60
    k.chacod("UTF8")
    if font in ("helve", "helves", "helvet", "serif"):
        k.shdcha()
        k.height(60)
        k.messag("Filled: Hamburgefonts ÄÖÜ äöü ßÅØ 0123 @&%", 80, y)
    k.kolfin()


def features_page(device):
    session("text_features", device)
    k.complx()
    k.height(30)
    k.chacod("UTF8")
    k.messag("UTF-8: Grüße, naïve façade, ¿Qué?, ©, ΑΩ αω, Привет", 80, 60)
    k.chacod("STAN")
    k.eushft("GERM", "!")
    k.messag("eushft GERM '!': M!unchen, Gr!o!se, !!", 80, 130)
    k.mixalf()
    k.messag("Mix mode: E = mc[2$, x]i$ + y]k[2$, 10[-3[4", 80, 200)
    k.smxalf("INST", "{", "}", 1)
    k.messag("Instructions: {H1.5}tall{HX} {E}up{EX} {N2}red{NX} {P1}underlined{L1} {W0.5}narrow{WX} {Z20}slant{ZX}",
             80, 270)
    k.smxalf("GREE", "<", ">", 2)
    k.messag("Shift to GREEK: <abgd> and back", 80, 340)
    # widths, slant, fixed pitch
    k.chawth(0.6)
    k.messag("chawth 0.6", 80, 410)
    k.chawth(1.5)
    k.messag("chawth 1.5", 600, 410)
    k.chawth(1.0)
    k.chaang(30.0)
    k.messag("chaang 30", 1300, 410)
    k.chaang(0.0)
    # angles round a point
    for a in range(0, 360, 45):
        k.angle(a)
        k.messag("   angle %d" % a, 600, 900)
    k.angle(0)
    # justification: the right edge of every line ends on the marked line
    k.txtjus("RIGH")
    for n, s in enumerate(["right", "justified text", "W"]):
        k.messag(s, 2800, 500 + 60 * n)
    k.txtjus("LEFT")
    # frames and backgrounds
    k.frmess(3)
    k.messag("framed", 1200, 700)
    k.frmess(0)
    k.txtbgd(3)
    k.messag("background", 1200, 820)
    k.txtbgd(-1)
    k.frmess(1)
    k.mixalf()
    k.messag("frame with a[2$ and i]k", 1200, 950)
    k.frmess(0)
    k.angle(20)
    k.frmess(2)
    k.txtbgd(4)
    k.messag("turned, framed, filled", 1800, 1200)
    k.angle(0)
    k.txtbgd(-1)
    k.frmess(0)
    k.paghdr("kolvex", "text page", 4, 0)
    k.fixspc(1.0)  # stays on to the end of the session
    k.messag("fixspc: iiiii WWWWW", 1800, 410)
    k.kolfin()


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else "."
    os.makedirs(out, exist_ok=True)
    os.chdir(out)
    for device in ("PNG", "SVG"):
        for font in FONTS:
            font_page(font, device)
        features_page(device)


if __name__ == "__main__":
    main()
