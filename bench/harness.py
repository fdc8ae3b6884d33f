"""What the benchmarks with a C++ side share: building that side."""
import os
import shutil
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def build(build_dir, target):
    """Configures a release build with the benchmark programs and builds one
    of them; returns the path of the program."""
    gen = ["-G", "Ninja"] if shutil.which("ninja") else []
    subprocess.run(["cmake", "-S", ROOT, "-B", build_dir, *gen, "-DKOLVEX_BENCH=ON",
                    "-DCMAKE_BUILD_TYPE=Release"], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", build_dir, "--parallel", "2", "--target", target],
                   check=True, stdout=subprocess.DEVNULL)
    return os.path.join(build_dir, target)
