# SPDX-License-Identifier: Apache-2.0
"""The declarations of a waveform, as the measurements need them: which instances make up a share of
the bits, and a forward file that names every object."""

import re


class Scope:
    def __init__(self, name, path):
        self.name = name
        self.path = path
        self.children = []
        self.signals = []  # (name, index texts: one for each bit, or one empty text)

    def bits(self):
        own = sum(len(indices) for _, indices in self.signals)
        return own + sum(child.bits() for child in self.children)


def indices_of(words):
    """The indices of a $var's bits, from the words behind its name: [7:0]"""
    found = re.fullmatch(r"\[(-?\d+):(-?\d+)\]", "".join(words))
    if not found:
        return [""]
    left, right = int(found[1]), int(found[2])
    step = 1 if right >= left else -1
    return [f"[{index}]" for index in range(left, right + step, step)]


def read_header(waveform):
    """The outermost scope of a VCD file."""
    open_scopes = [Scope("", "")]
    with open(waveform, encoding="latin-1") as file:
        for line in file:
            words = line.split()
            if words[:1] == ["$scope"]:
                parent = open_scopes[-1]
                path = parent.path + "/" + re.sub(r"\[(\d+)\]", r"(\1)", words[2])
                open_scopes.append(Scope(words[2], path))
                parent.children.append(open_scopes[-1])
            elif words[:1] == ["$upscope"]:
                open_scopes.pop()
            elif words[:1] == ["$var"]:
                open_scopes[-1].signals.append((words[4], indices_of(words[5:-1])))
            elif words[:1] == ["$enddefinitions"]:
                return open_scopes[0].children[0]
    raise ValueError(f"{waveform}: no $enddefinitions")


def share_of(scope, wanted):
    """Paths of whole instances that make up `wanted` bits, or nearly so, and their bits."""
    paths, bits = [], 0
    for child in scope.children:
        size = child.bits()
        if bits + size <= wanted:
            paths.append(child.path)
            bits += size
        elif bits < wanted * 0.9:
            inner_paths, inner_bits = share_of(child, wanted - bits)
            paths += inner_paths
            bits += inner_bits
    return paths, bits


def write_forward(scope, path):
    """A forward file in which every object keeps its name and each fourth one is sequential."""
    with open(path, "w", encoding="latin-1") as file:
        file.write('(SAIFILE\n(SAIFVERSION "2.0")\n(DIRECTION "forward")\n(DIVIDER /)\n')
        write_instance(scope, "top", file)
        file.write(")\n")


def escaped(index):
    return index.replace("[", "\\[").replace("]", "\\]")


def write_instance(scope, name, file):
    file.write(f'(INSTANCE "{name}" {name}\n')
    if scope.signals:
        file.write("(NET\n")
        for number, (signal, indices) in enumerate(scope.signals):
            kind = ' "sequential"' if number % 4 == 0 else ""
            file.writelines(f"({signal}{index} {signal}{escaped(index)}{kind})\n"
                            for index in indices)
        file.write(")\n")
    for child in scope.children:
        write_instance(child, child.name, file)
    file.write(")\n")
