"""What the figures were measured on and with."""
import os
import platform
import re
import subprocess


def first_line(*command):
    try:
        return subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()[0]
    except (OSError, subprocess.CalledProcessError, IndexError):
        return "unknown"


def from_file(path, pattern):
    with open(path, encoding="utf-8") as file:
        found = re.search(pattern, file.read(), re.MULTILINE)
    return found.group(1).strip() if found else "unknown"


def file_system(directory):
    """Type and options of the mount that holds `directory`."""
    directory = os.path.realpath(directory)
    best = ("", "unknown")
    with open("/proc/self/mounts", encoding="utf-8") as file:
        for line in file:
            _, point, kind, options = line.split()[:4]
            inside = directory == point or directory.startswith(point.rstrip("/") + "/")
            if inside and len(point) >= len(best[0]):
                best = (point, f"{kind} ({options})")
    return best[1]


def package(name):
    return first_line("dpkg-query", "-W", "-f=${Version}", name)


def describe(root, build, directory):
    cache = os.path.join(build, "CMakeCache.txt")
    compiler = from_file(cache, r"^CMAKE_CXX_COMPILER:\w+=(.*)$")
    changed = first_line("git", "-C", root, "status", "--porcelain", "--untracked-files=no") != "unknown"
    return {
        "processor": f"{from_file('/proc/cpuinfo', r'^model name.*: (.*)$')}, {os.cpu_count()} cores",
        "memory": f"{os.sysconf('SC_PAGE_SIZE') * os.sysconf('SC_PHYS_PAGES') / 2**30:.1f} GiB",
        "file system": file_system(directory),
        "kernel": f"{platform.system()} {platform.release()}",
        "compiler": f"{first_line(compiler, '--version')}, {from_file(cache, r'^CMAKE_BUILD_TYPE:.*=(.*)$')}",
        "load before": " ".join(f"{each:.2f}" for each in os.getloadavg()),
        "commit": first_line("git", "-C", root, "rev-parse", "--short", "HEAD") + (" and changes" if changed else ""),
        "python3-ldap": package("python3-ldap"),
        "libnet-ldap-perl": package("libnet-ldap-perl"),
        "libldap": package("libldap-2.5-0"),
    }
