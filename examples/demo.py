"""A first plot: a session that draws into a PNG file.

The page border is drawn three times, thick and thin in two colours, and
the colour table is shown as a band of pixels in the middle of the page.
"""
import kolvex

kolvex.setfil("demo.png")
kolvex.filmod("DELE")
kolvex.metafl("PNG")
kolvex.kolini()
kolvex.linwid(60)              # a thick border, drawn by the raster device
kolvex.color("BLUE")
kolvex.pagera()
kolvex.linwid(25)
kolvex.color("ORANGE")
kolvex.pagera()
kolvex.linwid(1)
kolvex.color("WHITE")
kolvex.pagera()

# The rainbow colour table, index by index from left to right.
width, height = 640, 80
band = bytes(i * 256 // width for i in range(width)) * height
kolvex.imgini()
kolvex.wpixls(band, (853 - width) // 2, (603 - height) // 2, width, height)
kolvex.imgfin()

name = kolvex.getfil()
kolvex.kolfin()
print("wrote", name)
