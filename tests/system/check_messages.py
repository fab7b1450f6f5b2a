#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks that the user guide has every message that stands in the sources: the plug-in's tagged ones
whole, and of the hosts' each piece of three words or more.

A conversion such as %s in a source stands for any one word in the guide.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
TEXTS = re.compile(r'"(?:\\.|[^"\\\n])*"(?:\s*"(?:\\.|[^"\\\n])*")*')
TAGGED = re.compile(r"(Error|Warning|Information) \(KLVA-PWR\): \S|Set_toggle_region|Kelvara power|Out of memory|Warning: ")
DIAGNOSIS = {"Information (KLVA-PWR): Cleaning up data structures",
             "Information (KLVA-PWR): Region based policy table"}

HOST_FOLDERS = ("wfsim", "shell", "vpi", "source", "source/vpi")
# Lists of what can be typed, which help and Tcl itself show; the version; the progress line.
SHOWN = re.compile(r"^(usage: |Time run |.*\?option|\?-radix|wfsim \(|, %\.0f|; wfsim -help)")


def messages(path):
    """The text literals of one source; neighbouring ones are one text."""
    source = re.sub(r'//.*|R"\((?s:.*?)\)"', "", path.read_text(encoding="utf-8"))
    for found in TEXTS.finditer(source):
        parts = re.findall(r'"((?:\\.|[^"\\\n])*)"', found[0])
        yield "".join(parts).replace('\\"', '"').replace("\\n", " ").replace("\\t", " ")


def pattern(message):
    words = " ".join(message.split())
    return re.compile(re.sub(r"%[-.\d]*[a-z]+", r"[^ |`]*", re.escape(words).replace("\\%", "%")))


def of_hosts():
    for folder in HOST_FOLDERS:
        for path in (ROOT / "host" / folder).glob("*.[ch]*"):
            for message in messages(path):
                if len(message.split()) >= 3 and not SHOWN.search(" ".join(message.split())):
                    yield message


def main():
    text = (ROOT / "docs/user-guide.md").read_text(encoding="utf-8")
    guide = " ".join(text.replace("\\|", "|").split())
    sources = [path for suffix in ("*.cpp", "*.h", "*.y") for path in (ROOT / "plugin").rglob(suffix)]
    found = {message for path in sources for message in messages(path) if TAGGED.search(message)}
    found |= set(of_hosts())
    missing = sorted(m for m in found - DIAGNOSIS if not pattern(m).search(guide))
    for message in missing:
        print(f"not in docs/user-guide.md: {message}")
    if missing or len(found) < 150:
        sys.exit(f"{len(missing)} of {len(found)} messages are not explained")
    print(f"all {len(found)} messages are explained")


if __name__ == "__main__":
    main()
