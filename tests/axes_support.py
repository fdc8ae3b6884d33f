"""Reading the native metafile back into plot coordinates."""


def read_plog(path, nxp=2969, nyp=2099):
    """The pieces of line of a native metafile, each a list of (x, y) in plot
    coordinates (y downward), as the layer drew them."""
    text = open(path).read().split("\n", 1)[1].replace("\n", "")
    fields = [float(text[i:i + 10]) for i in range(0, len(text), 10) if text[i:i + 10].strip()]
    hi = max(nxp, nyp)
    pieces, op, i = [], 3, 0
    while i < len(fields):
        v = fields[i]
        if v > 1.5:  # an operation or colour field outside a pair
            i += 1
            continue
        x, y = fields[i], fields[i + 1]
        i += 2
        if i < len(fields) and fields[i] in (2.0, 3.0):
            op = int(fields[i])
            i += 1
        pt = (x * hi, nyp - y * hi)
        if op == 3 or not pieces:
            pieces.append([pt])
        else:
            pieces[-1].append(pt)
    return pieces


def segments(pieces):
    out = []
    for p in pieces:
        out += [(p[k], p[k + 1]) for k in range(len(p) - 1)]
    return out
