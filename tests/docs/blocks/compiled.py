"""Compiles the C++ of a page against the installed headers, and configures its CMake against the installed package.

C++ without a function main is taken for statements: what it includes comes first, and the rest is the body of a
function. Sources that CMake is to compile and that the page does not supply are empty files.
"""
import re
import subprocess

from reading import Mistake

STANDARD = "c++17"  # the oldest that the headers are promised for


def program(block):
    if re.search(r"\bmain\(", block.text):
        return block.text
    includes = [line for line in block.lines if line.startswith("#include")]
    others = [line for line in block.lines if not line.startswith("#include")]
    return "\n".join([*includes, "int shown();", "int shown() {", *others, "return 0;", "}", ""])


def compile_block(block, scratch):
    settings = scratch.settings
    done = subprocess.run([settings.compiler, f"-std={STANDARD}", "-Wall", "-Wextra", "-Werror", "-fsyntax-only",
                           f"-I{settings.prefix}/include/cfgmig", "-x", "c++", "-"],
                          input=program(block), text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False)
    if done.returncode != 0:
        raise Mistake(f"{block.place}: the C++ does not compile\n{done.stdout}")


def configure_block(block, scratch):
    text = block.text
    if "project(" not in text:
        text = "project(shown LANGUAGES CXX)\n" + text
    if "cmake_minimum_required(" not in text:
        text = "cmake_minimum_required(VERSION 3.16)\n" + text
    directory = f"cmake-{block.line}"
    scratch.write(f"{directory}/CMakeLists.txt", text)
    for source in re.findall(r"[\w-]+\.cpp", text):
        scratch.write(f"{directory}/{source}", "")
    status, written = scratch.run(f"cmake -S {directory} -B {directory}/build -G Ninja -DCMAKE_PREFIX_PATH=$PREFIX")
    if status != 0:
        raise Mistake(f"{block.place}: CMake does not take it\n{written}")
