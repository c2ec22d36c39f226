#!/usr/bin/env python3
"""Shows that run.py finds what is wrong: small pages with one mistake each, and pages without one.

Usage: self_check.py --source DIRECTORY --tool FILE --compiler FILE
"""
import argparse
import os
import sys
import tempfile

sys.dont_write_bytecode = True

import links  # noqa: E402  nothing is to be written into the source directory
from run import check_page  # noqa: E402

SESSION = "```console\n$ cfgmig list examples/6.0/new.ldif | head -2\nCN=CONFIGURATION\n{}\n```\n"
SECOND = "CN=ADMIN,CN=CONFIGURATION"

# What a page says, and a part of what is to be said about it; nothing where it is right.
PAGES = (
    (SESSION.format(SECOND), None),
    (SESSION.format("CN=ADMIN,CN=CONFIGURATIOM"), "+" + SECOND),
    (SESSION.format(SECOND + "\nCN=MORE"), "-CN=MORE"),
    (SESSION.format("..."), None),
    ("```console\n$ echo 1; echo 2; echo 3\n...\n2\n```\n", "+3"),
    ("```console\n$ echo 12:00; date +%Y%m%d-%H%M%S\n12:00\n20261121-162803\n```\n", None),
    ("```console\n$ echo 5 entries\n6 entries\n```\n", "+5 entries"),
    ("```console\n$ pwd\n/srv/move\n```\n", None),
    ("```console\n$ false\n$ echo $?\n1\n```\n", None),
    ("```console\n$ false\n$ true\n```\n", "ended with 1, and the page does not tell"),
    ("```console\n$ exit 0\n$ true\n```\n", "the session ended before its last command"),
    ("```console\nno command\n```\n", "a session begins with a command"),
    ("```sh\ntrue\nfalse\n```\n", "the commands ended with 1 instead of 0"),
    ("<!-- block: ends with 1 -->\n```sh\ntrue\nfalse\n```\n", None),
    ("```sh\nx=1\n```\n```sh\ntest -z \"$x\" && touch here\n```\n```sh\ntest -e here\n```\n", None),
    ("```cpp\nint f(int x) { return x; }\nint main() { return f(1); }\n```\n", None),
    ("```cpp\nint main() { return f(1); }\n```\n", "the C++ does not compile"),
    ("```cpp\nint unused = 1;\n```\n", "the C++ does not compile"),
    ("```cpp\n#include <string>\nstd::string text;\nif (!text.empty()) return 1;\n```\n", None),
    ("```cmake\nmessage(FATAL_ERROR no)\n```\n", "CMake does not take it"),
    ("```json\n{\"a\": 1}\n```\n", None),
    ("```json\n{\"a\": 1,}\n```\n", "this is no JSON"),
    ("```ldif\ndn: cn=x\ncn: x\n```\n", None),
    ("```ldif\ndn: cn=x\ncn x\n```\n", "this is no LDIF"),
    ("```text\nanything\n```\n", "text has to say where it is from"),
    ("```python\n1\n```\n", "a block of \"python\""),
    ("```\n1\n```\n", "a block of \"\""),
    ("```sh\ntrue\n", "the block has no end"),
    ("<!-- block: not run -->\n```sh\nfalse\n```\n", "\"not run\" says no more"),
    ("<!-- block: not run, it would end the world -->\n```sh\nfalse\n```\n", None),
    ("<!-- block: skipped -->\n```sh\nfalse\n```\n", "a comment about a block that nobody understands"),
    ("<!-- block: not run, why -->\n\nNo block.\n", "no block follows this comment"),
    ("<!-- block: file a/b -->\n```text\nhello\n```\n```console\n$ cat a/b\nhello\n```\n", None),
    ("<!-- block: output of echo '{\"a\":1}' -->\n```json\n{ \"a\": 1 }\n```\n", None),
    ("<!-- block: output of echo '{\"a\":2}' -->\n```json\n{ \"a\": 1 }\n```\n", "+ \"a\": 2"),
    ("<!-- block: part of examples/6.0/new.ldif -->\n```text\nversion: 1\n...\ndn: CN=ADMIN, CN=CONFIGURATION\n```\n",
     None),
    ("<!-- block: part of examples/6.0/new.ldif -->\n```text\ndn: CN=ADMIN, CN=CONFIGURATION\n...\nversion: 1\n```\n",
     "are not in examples/6.0/new.ldif"),
    ("<!-- block: part of examples/absent -->\n```text\nx\n```\n", "No such file"),
    ("[here](page.md#a-heading) and [there](examples/6.0)\n\n# A heading\n", None),
    ("[there](absent.md)\n", "links to absent.md"),
    ("[there](page.md#no-heading)\n\n# A heading\n", "links to the heading #no-heading"),
    ("`cfgmig apply --old A --new B`, `cfgmig help apply`, `cfgmig`, `cfgmig COMMAND --json`\n", None),
    ("`cfgmig aply`\n", "there is no command aply"),
    ("`cfgmig list FILE --sideways`\n", "list has no option --sideways"),
    ("<!-- block: not run, why -->\n```sh\ncfgmig list --sideways\n```\n", "list has no option --sideways"),
    ("`scripts/absent now`\n", "there is no scripts/absent"),
)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    for name in ("source", "tool", "compiler"):
        parser.add_argument("--" + name, required=True)
    settings = parser.parse_args()
    failures = 0
    with tempfile.TemporaryDirectory(prefix="docs-self-") as directory:
        os.symlink(os.path.join(os.path.realpath(settings.source), "examples"), os.path.join(directory, "examples"))
        settings.source, settings.prefix, settings.flags, settings.renew = directory, "/nonexistent", "", False
        tool = links.Tool(settings.tool)
        for text, wanted in PAGES:
            with open(os.path.join(directory, "page.md"), "w", encoding="utf-8") as file:
                file.write(text)
            _, mistakes = check_page("page.md", settings, tool)
            said = "\n".join(mistakes)
            if (not mistakes) if wanted is None else (len(mistakes) == 1 and wanted in said):
                continue
            failures += 1
            print(f"FAILED: {wanted or 'nothing'} was to be said of\n{text}\nand this was said:\n{said}\n")
    print(f"{len(PAGES)} pages, {failures} failures")
    return 1 if failures or not PAGES else 0


if __name__ == "__main__":
    sys.exit(main())
