#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Checks what the built plug-in shows to a simulator and wants from it: check_linkage.py LIBRARY

It exports swfli_init alone, needs the C library and its maths library alone, and asks the simulator
for functions of the interface that it is meant to use, and no others.
"""

import re
import subprocess
import sys

EXPORTS = {"swfli_init"}
LIBRARIES = {"libc.so.6", "libm.so.6"}
INTERFACE = set("""
    mti_AddCommand mti_AddQuitCB mti_PrintMessage mti_VsimFree
    mti_FindRegion mti_GetRegionFullName mti_GetRegionKind mti_FirstLowerRegion mti_NextRegion
    mti_FindSignal mti_FirstSignal mti_NextSignal mti_GetSignalRegion mti_GetSignalName
    mti_GetSignalNameIndirect mti_GetSignalType mti_GetSignalSubelements mti_GetSignalMode
    mti_GetSignalValue mti_GetTypeKind mti_GetArrayElementType mti_GetEnumValues mti_TickLength
    mti_TickLeft mti_TickRight mti_TickDir mti_CreateProcess mti_CreateProcessWithPriority
    mti_Sensitize mti_NowIndirect mti_GetResolutionLimit acc_fetch_fulltype""".split())


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def main():
    library = sys.argv[1]
    exported = {line.split()[-1].split("@")[0]
                for line in run("nm", "-D", "--defined-only", library).splitlines()}
    wanted = [line.split()[-1] for line in run("nm", "-D", "--undefined-only", library).splitlines()
              if line.split()[-2] == "U"]
    needed = set(re.findall(r"\(NEEDED\).*\[(.+)\]", run("readelf", "-d", library)))
    found = set(re.findall(r"^\s*(\S+\.so\.\d+) =>", run("ldd", library), re.MULTILINE))
    strangers = {name for name in wanted if "@GLIBC_" not in name} - INTERFACE
    faults = []
    if exported != EXPORTS:
        faults.append(f"exports {sorted(exported)}")
    if not needed <= LIBRARIES or "libc.so.6" not in needed:
        faults.append(f"needs {sorted(needed)}")
    if not found - {"linux-vdso.so.1"} <= LIBRARIES:
        faults.append(f"loads {sorted(found)}")
    if strangers:
        faults.append(f"asks the simulator for {sorted(strangers)}")
    if faults:
        sys.exit(f"{library}: " + "; ".join(faults))
    print(f"exports {sorted(exported)}, needs {sorted(needed)}, "
          f"uses {len(INTERFACE & set(wanted))} functions of the interface")


if __name__ == "__main__":
    main()
