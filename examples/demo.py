"""A first plot: a session that draws into the library's own metafile."""
import kolvex

kolvex.setfil("demo.met")
kolvex.filmod("DELE")
kolvex.metafl("PLOG")
kolvex.kolini()
kolvex.pagera()
kolvex.linwid(20)
kolvex.pagera()
name = kolvex.getfil()
kolvex.kolfin()
print("wrote", name)
