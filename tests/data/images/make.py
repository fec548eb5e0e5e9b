#!/usr/bin/env python3
"""Makes the image-decoding corpus: one flavour of PNG or JPEG per file, each beside the reference
its decoded pixels are compared with (ref_<name>.pam: 8-bit RGBA, sRGB, upright).

The references come from the source pictures drawn here, never from a decoder: an oriented file
is the upright picture turned the other way and tagged; a P3 or Adobe RGB file holds the picture's
colours converted by the colour-space formulas below and carries a profile written here; a CMYK
file is ImageMagick's plain CMYK of the picture. Encoding is ImageMagick's `convert` (JPEG) or
this script's own PNG writer (to control every chunk); cjpeg for arithmetic coding and
restart markers; cmyk_writer.c for plain CMYK. Run once; the output is committed.

    python3 tests/data/images/make.py
"""
import math
import os
import struct
import subprocess
import zlib

HERE = os.path.dirname(os.path.abspath(__file__))
W, H = 32, 16  # quadrants of 16 x 8: each JPEG block one flat colour
COLOURS = [(220, 40, 40), (40, 200, 60), (40, 60, 210), (230, 210, 50)]  # TL, TR, BL, BR
GREYS = [(32, 32, 32), (100, 100, 100), (170, 170, 170), (240, 240, 240)]


def picture(colours, w=W, h=H):
    return [[colours[(y >= h // 2) * 2 + (x >= w // 2)] + (255,) for x in range(w)]
            for y in range(h)]


def out(name):
    return os.path.join(HERE, name)


def write_pam(name, rows):
    h, w = len(rows), len(rows[0])
    with open(out(name), "wb") as f:
        f.write(b"P7\nWIDTH %d\nHEIGHT %d\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n" % (w, h))
        for row in rows:
            for p in row:
                f.write(bytes(p))


def write_ppm(path, rows):
    with open(path, "wb") as f:
        f.write(b"P6\n%d %d\n255\n" % (len(rows[0]), len(rows)))
        for row in rows:
            for p in row:
                f.write(bytes(p[:3]))


def convert(rows, name, *options):
    tmp = out("_source.ppm")
    write_ppm(tmp, rows)
    subprocess.run(["convert", tmp, *options, out(name)], check=True)
    os.remove(tmp)


def cjpeg(rows, name, *options):
    """libjpeg-turbo's own encoder (libjpeg-turbo-progs), for what ImageMagick cannot ask of it."""
    tmp = out("_source.ppm")
    write_ppm(tmp, rows)
    subprocess.run(["cjpeg", "-quality", "95", "-sample", "1x1", *options, "-outfile", out(name),
                    tmp], check=True)
    os.remove(tmp)


def cmyk_jpeg(rows, name, adobe):
    """Plain CMYK (no YCCK transform): ink from 0 up, or inverted under Adobe's marker."""
    raw = bytearray()
    for row in rows:
        for r, g, b, _ in row:
            k = 1 - max(r, g, b) / 255
            ink = [0 if k >= 1 else (1 - v / 255 - k) / (1 - k) for v in (r, g, b)] + [k]
            raw += bytes(round(255 * (1 - i if adobe else i)) for i in ink)
    tool = out("_cmyk_writer")
    subprocess.run(["cc", "-O2", "-o", tool, out("cmyk_writer.c"), "-ljpeg"], check=True)
    with open(out("_cmyk.raw"), "wb") as f:
        f.write(raw)
    subprocess.run([tool, str(len(rows[0])), str(len(rows)), out("_cmyk.raw"), out(name),
                    "1" if adobe else "0"], check=True)
    os.remove(tool)
    os.remove(out("_cmyk.raw"))


# --- PNG, chunk by chunk ---------------------------------------------------------------------

def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)


def write_png(name, w, h, bit_depth, colour_type, raw_rows, extra=(), after_plte=()):
    """raw_rows: each row's bytes as stored (no filter byte)."""
    data = b"".join(b"\0" + r for r in raw_rows)
    png = b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", w, h, bit_depth,
                                                            colour_type, 0, 0, 0))
    for c in extra:
        png += chunk(*c)
    for c in after_plte:
        png += chunk(*c)
    png += chunk(b"IDAT", zlib.compress(data, 9)) + chunk(b"IEND", b"")
    with open(out(name), "wb") as f:
        f.write(png)


# --- EXIF ------------------------------------------------------------------------------------

def exif(orientation):
    """A TIFF structure holding one tag, the orientation (big-endian)."""
    ifd = struct.pack(">H", 1) + struct.pack(">HHIHH", 0x0112, 3, 1, orientation, 0) + b"\0\0\0\0"
    return b"MM\0\x2a" + struct.pack(">I", 8) + ifd


def tag_jpeg(name, orientation):
    with open(out(name), "rb") as f:
        jpeg = f.read()
    body = b"Exif\0\0" + exif(orientation)
    with open(out(name), "wb") as f:
        f.write(jpeg[:2] + b"\xFF\xE1" + struct.pack(">H", len(body) + 2) + body + jpeg[2:])


# What turns the upright picture into the stored one for each orientation (the inverse of what
# the orientation asks of a viewer), in ImageMagick's words.
STORE = {1: [], 2: ["-flop"], 3: ["-rotate", "180"], 4: ["-flip"], 5: ["-transpose"],
         6: ["-rotate", "270"], 7: ["-transverse"], 8: ["-rotate", "90"]}


def stored(rows, orientation):
    """The same turn in Python, for the PNG flavours."""
    h, w = len(rows), len(rows[0])
    get = {1: lambda x, y: rows[y][x], 2: lambda x, y: rows[y][w - 1 - x],
           3: lambda x, y: rows[h - 1 - y][w - 1 - x], 4: lambda x, y: rows[h - 1 - y][x],
           5: lambda x, y: rows[x][y], 6: lambda x, y: rows[x][w - 1 - y],
           7: lambda x, y: rows[h - 1 - x][w - 1 - y], 8: lambda x, y: rows[h - 1 - x][y]}[orientation]
    sw, sh = (h, w) if orientation >= 5 else (w, h)
    return [[get(x, y) for x in range(sw)] for y in range(sh)]


# --- colour spaces ---------------------------------------------------------------------------

def srgb_decode(v):
    v /= 255
    return v / 12.92 if v <= 0.04045 else ((v + 0.055) / 1.055) ** 2.4


def srgb_encode(v):
    v = min(max(v, 0), 1)
    return 12.92 * v if v <= 0.0031308 else 1.055 * v ** (1 / 2.4) - 0.055


def to_xyz_matrix(primaries, white):
    """RGB to XYZ for primaries [(x, y)] * 3 and a white (x, y)."""
    cols = [(x / y, 1, (1 - x - y) / y) for x, y in primaries]
    wx, wy = white
    wxyz = (wx / wy, 1, (1 - wx - wy) / wy)
    m = [[cols[j][i] for j in range(3)] for i in range(3)]
    s = solve(m, wxyz)
    return [[m[i][j] * s[j] for j in range(3)] for i in range(3)]


def solve(m, v):
    inv = invert(m)
    return [sum(inv[i][j] * v[j] for j in range(3)) for i in range(3)]


def invert(m):
    a, b, c = m[0]
    d, e, f = m[1]
    g, h, i = m[2]
    det = a * (e * i - f * h) - b * (d * i - f * g) + c * (d * h - e * g)
    return [[(e * i - f * h) / det, (c * h - b * i) / det, (b * f - c * e) / det],
            [(f * g - d * i) / det, (a * i - c * g) / det, (c * d - a * f) / det],
            [(d * h - e * g) / det, (b * g - a * h) / det, (a * e - b * d) / det]]


def mul(m, v):
    return [sum(m[i][j] * v[j] for j in range(3)) for i in range(3)]


def matmul(a, b):
    return [[sum(a[i][k] * b[k][j] for k in range(3)) for j in range(3)] for i in range(3)]


D65 = (0.3127, 0.3290)
SRGB = to_xyz_matrix([(0.64, 0.33), (0.30, 0.60), (0.15, 0.06)], D65)
SPACES = {  # name: (primaries, transfer to linear, from linear)
    "p3": ([(0.680, 0.320), (0.265, 0.690), (0.150, 0.060)], srgb_decode, srgb_encode, None),
    "adobergb": ([(0.64, 0.33), (0.21, 0.71), (0.15, 0.06)],
                 lambda v: (v / 255) ** (563 / 256), lambda v: min(max(v, 0), 1) ** (256 / 563),
                 563 / 256),
}


def to_space(rows, space):
    primaries, _, encode, _ = SPACES[space]
    m = matmul(invert(to_xyz_matrix(primaries, D65)), SRGB)
    return [[tuple(round(255 * encode(c)) for c in mul(m, [srgb_decode(v) for v in p[:3]]))
             + (255,) for p in row] for row in rows]


def s15(v):
    return struct.pack(">i", round(v * 65536))


def icc(space):
    """A version 2 matrix/TRC display profile for the space (D50 colorants, Bradford-adapted)."""
    primaries, _, _, gamma = SPACES[space]
    bradford = [[0.8951, 0.2664, -0.1614], [-0.7502, 1.7135, 0.0367], [0.0389, -0.0685, 1.0296]]
    d65 = (0.95047, 1.0, 1.08883)
    d50 = (0.96422, 1.0, 0.82521)
    cone65, cone50 = mul(bradford, d65), mul(bradford, d50)
    scale = [[cone50[i] / cone65[i] if i == j else 0 for j in range(3)] for i in range(3)]
    adapt = matmul(invert(bradford), matmul(scale, bradford))
    m = matmul(adapt, to_xyz_matrix(primaries, D65))

    def xyz(v):
        return b"XYZ \0\0\0\0" + b"".join(s15(c) for c in v)

    if gamma is None:  # the sRGB curve, as a parametric curve of type 3
        g, a, b, c, d = 2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045
        trc = b"para\0\0\0\0" + struct.pack(">HH", 3, 0) + b"".join(s15(v) for v in (g, a, b, c, d))
    else:
        trc = b"curv\0\0\0\0" + struct.pack(">IH", 1, round(gamma * 256)) + b"\0\0"
    text = space.encode() + b"\0"
    desc = b"desc\0\0\0\0" + struct.pack(">I", len(text)) + text + b"\0" * 12 + b"\0" * 67
    cprt = b"text\0\0\0\0" + b"No copyright, made by make.py\0"
    tags = [(b"desc", desc), (b"cprt", cprt), (b"wtpt", xyz(d50)),
            (b"rXYZ", xyz([m[i][0] for i in range(3)])), (b"gXYZ", xyz([m[i][1] for i in range(3)])),
            (b"bXYZ", xyz([m[i][2] for i in range(3)])), (b"rTRC", trc), (b"gTRC", trc), (b"bTRC", trc)]
    offset = 128 + 4 + 12 * len(tags)
    table, data = struct.pack(">I", len(tags)), b""
    for sig, body in tags:
        while len(body) % 4:
            body += b"\0"
        table += sig + struct.pack(">II", offset + len(data), len(body))
        data += body
    size = offset + len(data)
    header = struct.pack(">I4sI4s4s4s", size, b"none", 0x02100000, b"mntr", b"RGB ", b"XYZ ")
    header += b"\0" * 12 + b"acsp" + b"\0" * 4 + b"\0" * 4 + b"\0" * 8 + b"\0" * 8 + struct.pack(">I", 0)
    header += s15(d50[0]) + s15(d50[1]) + s15(d50[2]) + b"\0" * 4
    header += b"\0" * (128 - len(header))
    return header + table + data


# --- the corpus ------------------------------------------------------------------------------

def main():
    upright = picture(COLOURS)
    greys = picture(GREYS)
    write_pam("ref_colours.pam", upright)
    write_pam("ref_greys.pam", greys)
    jpeg = ["-quality", "95", "-sampling-factor", "1x1", "-strip"]

    for o in range(1, 9):
        convert(upright, "orient%d.jpg" % o, *STORE[o], *jpeg)
        tag_jpeg("orient%d.jpg" % o, o)
    rows = stored(upright, 6)
    write_png("orient6.png", len(rows[0]), len(rows), 8, 2,
              [bytes(c for p in r for c in p[:3]) for r in rows],
              extra=[(b"eXIf", exif(6))])

    # ImageMagick stores CMYK as YCCK with Adobe's marker (values inverted, as Photoshop does).
    convert(upright, "ycck.jpg", "-colorspace", "CMYK", *jpeg)
    cmyk_jpeg(upright, "cmyk.jpg", adobe=False)
    cmyk_jpeg(upright, "cmyk-adobe.jpg", adobe=True)
    convert(greys, "grey.jpg", "-colorspace", "Gray", *jpeg)
    convert(upright, "progressive.jpg", "-interlace", "JPEG", *jpeg)
    cjpeg(upright, "arithmetic.jpg", "-arithmetic")
    cjpeg(upright, "restart.jpg", "-restart", "1B")  # a restart marker after every block
    convert(picture(COLOURS, 64, 64), "_tall.jpg", *jpeg)
    with open(out("_tall.jpg"), "rb") as f:
        tall = f.read()
    scan = tall.index(b"\xFF\xDA")  # cut halfway through the scan: the top half decodes
    with open(out("truncated.jpg"), "wb") as f:
        f.write(tall[: scan + (len(tall) - scan) // 2])
    write_pam("ref_tall.pam", picture(COLOURS, 64, 64))
    os.remove(out("_tall.jpg"))
    for space in SPACES:
        profile = out("_%s.icc" % space)
        with open(profile, "wb") as f:
            f.write(icc(space))
        convert(to_space(upright, space), "%s.jpg" % space, *jpeg, "-profile", profile)
        rows = to_space(upright, space)
        write_png("%s.png" % space, W, H, 8, 2, [bytes(c for p in r for c in p[:3]) for r in rows],
                  extra=[(b"iCCP", b"profile\0\0" + zlib.compress(icc(space)))])
        os.remove(profile)

    # Palette with tRNS: the right half transparent, a pixel half so.
    palette = COLOURS
    trns = bytes([255, 0, 255, 128])
    write_png("palette.png", W, H, 8, 3,
              [bytes((y >= H // 2) * 2 + (x >= W // 2) for x in range(W)) for y in range(H)],
              extra=[(b"PLTE", b"".join(bytes(c) for c in palette)), (b"tRNS", trns)])
    write_pam("ref_palette.pam", [[p[:3] + (trns[(y >= H // 2) * 2 + (x >= W // 2)],)
                                   for x, p in enumerate(r)] for y, r in enumerate(upright)])
    # Grey with alpha (the alpha 255 on the left, 96 on the right), and grey alone.
    write_png("greyalpha.png", W, H, 8, 4,
              [bytes(v for x, p in enumerate(r) for v in (p[0], 255 if x < W // 2 else 96))
               for r in greys])
    write_pam("ref_greyalpha.pam", [[p[:3] + (255 if x < W // 2 else 96,) for x, p in enumerate(r)]
                                    for r in greys])
    write_png("grey.png", W, H, 8, 0, [bytes(p[0] for p in r) for r in greys])
    # 16 bits a sample: each 8-bit value v as v * 257 + 100 (rounds back to v).
    write_png("deep.png", W, H, 16, 2,
              [b"".join(struct.pack(">H", min(c * 257 + 100, 65535)) for p in r for c in p[:3])
               for r in greys])
    # Interlaced (Adam7), by ImageMagick, without colour chunks.
    convert(upright, "interlaced.png", "-interlace", "PNG", "-define",
            "png:exclude-chunks=gAMA,cHRM,sRGB,bKGD,tIME,zTXt,tEXt,iCCP", "-strip")
    # Linear light (gAMA 1.0): the stored value is the light itself.
    write_png("linear.png", W, H, 8, 2,
              [bytes(round(255 * srgb_decode(c)) for p in r for c in p[:3]) for r in greys],
              extra=[(b"gAMA", struct.pack(">I", 100000))])


if __name__ == "__main__":
    main()
