# SPDX-License-Identifier: Apache-2.0
"""What the tests inside open simulators share: how a simulator is started with the recorder in it,
and the comparison of what was recorded there with a replay of the waveform dumped in the same run."""

import os
import pathlib
import re

import count_vcd
from compare_saif import Report
from programs import BUILD, HERE, WFSIM, FolderCase, must, run

DESIGNS = HERE / "designs"
MODULES = BUILD / "lib"
# What a simulator is started with when the module is sanitized. What leaks are the simulators. The
# status is one that no test expects.
PRELOAD = os.environ.get("WATTFORGE_PRELOAD")
SANITIZED = ["env", f"LD_PRELOAD={PRELOAD}", "ASAN_OPTIONS=detect_leaks=0:exitcode=99",
             "UBSAN_OPTIONS=exitcode=99"] if PRELOAD else []
STILL_OPEN = "Warning: the counting window is still open at the end; it is in no report"
MISSING = "wattforge: cannot read gone.tcl: No such file or directory"

# What goes wrong alike in any simulator; name: (script or None, arguments, status, lines that begin
# with a level).
FAILURES_ANYWHERE = {
    "a script that is not there": (None, ["+wf_do=gone.tcl"], 1, [MISSING]),
    "a plug-in that is not there": (None, ["+wf_foreign=swfli_init:./nowhere.so"], 1, [
        'wattforge: cannot load the plug-in "./nowhere.so": ./nowhere.so: cannot open shared '
        "object file: No such file or directory"]),
}


class Icarus:
    """A Verilog design, compiled in a folder; +vcd has it dump the waveform of its name."""

    def __init__(self, folder, *sources, generation="-g2005"):
        self.waveform = pathlib.Path(sources[0]).stem + ".vcd"
        self.design = pathlib.Path(folder) / "design.vvp"
        must("iverilog", generation, "-o", self.design, *sources, folder=folder)

    def command(self, *plusargs, dump=False, modules=MODULES):
        dump = ["+vcd"] if dump else []
        return [*SANITIZED, "vvp", "-n", "-M", modules, "-m", "wattforge", self.design, *plusargs,
                *dump]


class Ghdl:
    """A VHDL design with the top entity `tb`, analysed into a folder of its own."""

    def __init__(self, folder, *sources):
        self.waveform = pathlib.Path(sources[0]).stem + ".vcd"
        self.library = pathlib.Path(folder)
        must("ghdl", "-a", "--std=08", *sources, folder=folder)
        must("ghdl", "-e", "--std=08", "tb", folder=folder)

    def command(self, *options, dump=False, modules=MODULES):
        dump = [f"--vcd={self.waveform}"] if dump else []
        return [*SANITIZED, "ghdl", "-r", "--std=08", f"--workdir={self.library}", "tb",
                f"--vpi={modules}/wattforge.vpi", *dump, *options]


def environment(**more):
    """This process's environment without a script's name of its own."""
    return {name: value for name, value in os.environ.items() if name != "WF_DO"} | more


def script_for(windows, instance="/tb"):
    """The run script that records the windows, (start, stop) in ps; all of the run without any."""
    lines = [f"set_toggle_region {instance}"]
    now = 0
    for start, stop in windows:
        lines += [f"run {start - now}ps", "toggle_start", f"run {stop - start}ps", "toggle_stop"]
        now = stop
    if not windows:
        lines += ["toggle_start", "run -all", "toggle_stop"]
    return "\n".join([*lines, f"toggle_report out.saif 1.0e-12 {instance}", ""])


def bases(paths):
    """The objects that the paths of bits belong to."""
    return sorted({re.sub(r"(\(-?\d+\))+$", "", path) for path in paths})


def levels(shown):
    """The transcript's lines that tell of something gone wrong; what GHDL cannot show is nothing
    new."""
    return [line for line in shown.splitlines()
            if line.startswith(("Error", "Warning", "Note", "wattforge"))
            and not line.startswith("Note: GHDL shows")]


class InsideCase(FolderCase):
    """Each class compiles its designs in the folder that its tests share."""

    def simulate(self, simulator, script, *plusargs, status=0, variables=(), **more):
        """Runs the design with the script (its text, None for none) and returns what was shown."""
        if script is not None:
            (self.folder / "run.tcl").write_text(script)
            plusargs = ["+wf_do=run.tcl", *plusargs]
        done = run(*simulator.command(*plusargs, **more), folder=self.folder,
                   env=environment(**dict(variables)))
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        return done.stdout + done.stderr

    def replay(self, vcd, script):
        """The same script over the waveform, in a folder of its own: that folder."""
        folder = self.folder / "replayed"
        folder.mkdir(exist_ok=True)
        (folder / "run.tcl").write_text(script)
        must(WFSIM, vcd, "-do", "run.tcl", folder=folder)
        return folder

    def assert_equal_with_replay(self, simulator, windows, end, only_inside, only_dumped):
        """Records and dumps in one run; every bit that both see agrees in every field, and with an
        independent count. only_inside, only_dumped: reason -> objects that the other has not."""
        script = script_for(windows)
        self.simulate(simulator, script, dump=True)
        dumped = self.folder / simulator.waveform
        inside = Report(self.folder / "out.saif")
        replayed = Report(self.replay(dumped, script) / "out.saif")
        self.assertEqual(list(inside.check_sums()), [])
        self.assertEqual(inside.header["DURATION"], replayed.header["DURATION"])
        both = inside.bits.keys() & replayed.bits.keys()
        self.assertEqual(bases(inside.bits.keys() - both), sorted(sum(only_inside.values(), [])))
        self.assertEqual(bases(replayed.bits.keys() - both), sorted(sum(only_dumped.values(), [])))
        self.assert_same_figures(inside.bits, replayed.bits, both)
        self.assert_independent(inside.bits, dumped, windows or [(0, end)], both)
        return inside

    def assert_same_bits(self, one, other):
        """Two SAIF files hold the same bits with the same figures."""
        one, other = Report(one).bits, Report(other).bits
        self.assertEqual(one.keys(), other.keys())
        self.assert_same_figures(one, other, one.keys())

    def assert_same_figures(self, inside, replayed, paths):
        different = {path: (inside[path], replayed[path]) for path in sorted(paths)
                     if inside[path] != replayed[path]}
        self.assertEqual(different, {})

    def assert_independent(self, inside, dumped, windows, paths):
        edges = [(f"{start}ps", f"{stop}ps") for start, stop in windows]
        counted, resolution, _ = count_vcd.count(str(dumped), edges)
        scale = 10.0 ** (resolution + 12)
        for path in paths:
            times = {name: f"{counted[path][name] * scale:.6f}" for name in ("T0", "T1", "TX")}
            counts = {name: f"{counted[path][name]:.6f}" for name in ("TC", "IG")}
            self.assertEqual(inside[path], [times | counts], path)
