#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""The recorder inside Icarus Verilog: figures against a replay of the waveform of the same run, the
run script and the system tasks, and what can go wrong."""

import unittest

from compare_saif import Report
from inside import (DESIGNS, FAILURES_ANYWHERE, MISSING, MODULES, SANITIZED, STILL_OPEN, Icarus,
                    InsideCase, bases, levels, script_for)
from programs import HERE, ROOT, UART, WFSIM, must, run, simulate_uart, without_date

# name: (generation, end of the run in ps)
KINDS = {
    "hierarchy.v": ("-g2005", 1_000_000),
    "delays.v": ("-g2005", 40_000),
    "types.sv": ("-g2012", 713_100),
}

# Windows as parts of the run; the whole run when there is none.
WINDOWS = {"the whole run": [], "in the middle": [(0.1, 0.61)], "two": [(0.05, 0.2), (0.5, 0.83)]}

# What is in no dump, and why; a dump has nothing that is not seen inside. Neither has arrays of
# nets (mesh), of two-state variables (bits_of, numbers) and reals.
ONLY_INSIDE = {
    "hierarchy.v": {"memories whose words $dumpvars does not name": [
        "/tb/dut.b(1)/x/grid", "/tb/dut.b(1)/x/memory", "/tb/dut.b(1)/x/odd_memory",
        "/tb/dut/grid"]},
    "delays.v": {},
    "types.sv": {},
}
ONLY_DUMPED = {}

# Nets behind a port of another name (inner, left and right of /tb/old) are not known to be ports.
PORTS_OF = ("/tb/dut/", "/tb/old/")
PORTS = ["/tb/dut/clk", "/tb/dut/enable", "/tb/dut/in", "/tb/dut/low", "/tb/dut/out", "/tb/dut/pad",
         "/tb/old/back", "/tb/old/clk"]

# What a test bench would write instead of a script.
TASKS = """`timescale 1ns / 1ps
module record;
    initial begin
        $set_toggle_region("/tb/dut");
        #%d $toggle_start;
        #40000 $toggle_stop;
        $toggle_report("out.saif", %s, "/tb/dut");
        #1 $finish;
    end
endmodule
"""

# Where it prints, every host has to print the same.
TALKATIVE = """
proc tell {args} {puts "> [join $args]"}
set_toggle_region /tb/dut
run 10ns
tell [now] [examine /tb/clk] [examine -radix hex /tb/dut/tx_queue/write_at]
run 1.99 us
tell [now] [examine -radix unsigned /tb/dut/divisor /tb/seed]
toggle_start
run 5000000
tell [now] [examine {/tb/dut/tx_queue/slot[0]/write} /tb/dut/bus /tb/dut/bus(3)]
proc later {} {
    run 1us
    tell [now] [examine -radix binary /tb/dut/rx/data]
    return [now]
}
for {set i 0} {$i < 3} {incr i} {
    set time [later]
    tell $i $time [catch {run nowhere} text] $text
}
tell [lsort [find signals /tb/dut/rx/*]]
tell [lsort [find regions -r /tb/dut/tx*]]
tell [env dut/rx] [run] [now] [radix hex] [examine data ../divisor] [find signals da*]
echo > [catch {force data 0} text] [regexp {^force: a [a-z]+ has no forced values$} $text]
run -all
toggle_stop
toggle_report out.saif 1.0e-9 /tb/dut
tell [now]
run 10ns
run -all
tell [now]
"""

OPEN = "set_toggle_region /tb/dut\ntoggle_start\nrun 10us\n"

# name: (script or None, further plusargs, environment, status, lines that begin with a level)
FAILURES = {
    "an error in the script": (
        OPEN + "puts $nothing\n", [], {}, 1,
        ["Error: run.tcl:4: can't read \"nothing\": no such variable", STILL_OPEN]),
    "an error before the simulation has begun": (
        "nonsense\n", [], {}, 1, ['Error: run.tcl:1: invalid command name "nonsense"']),
    "a script that is not there, by environment": (None, [], {"WF_DO": "gone.tcl"}, 1, [MISSING]),
    "the plusarg goes before the environment": ("quit -code 3\n", [], {"WF_DO": "gone.tcl"}, 3, []),
    "a script that ends with its window open": (OPEN, [], {}, 0, [STILL_OPEN]),
    "quit with the window open": (OPEN + "quit -code 4\n", [], {}, 4, [STILL_OPEN]),
    "an argument that is not one": (None, ["+wf_doo=run.tcl"], {}, 2, [
        "wattforge: +wf_doo=run.tcl: unknown argument; there are +wf_do=FILE, "
        "+wf_foreign=FUNCTION:LIBRARY, +wf_memory=BITS, +wf_strict, +wf_trace"]),
    "back in time": ("set_toggle_region /tb; toggle_start; restart\n", [], {}, 1, [
        "Error: run.tcl:1: restart: the simulator cannot go back in time; start the simulation "
        "again", STILL_OPEN]),
    "a run past the end": (
        "run 1ms\n", [], {}, 0, ["Note: run stopped at 46706 ns, the end of the simulation"]),
}


class Equality(InsideCase):
    def test_every_bit_of_every_design(self):
        for name, (generation, end) in KINDS.items():
            simulator = Icarus(self.shared, DESIGNS / name, generation=generation)
            for part, windows in WINDOWS.items():
                # Multiples of 100 ps, the coarsest resolution.
                edges = [tuple(round(end * edge / 100) * 100 for edge in window)
                         for window in windows]
                with self.subTest(name, windows=part):
                    self.assert_equal_with_replay(simulator, edges, end, ONLY_INSIDE[name],
                                                  ONLY_DUMPED)


    def test_directions_of_ports(self):
        simulator = Icarus(self.shared, DESIGNS / "hierarchy.v")
        self.simulate(simulator, script_for([(0, 1000)]))
        ports = Report(self.folder / "out.saif").ports
        self.assertEqual(bases(path for path in ports if path.startswith(PORTS_OF)), PORTS)

    def test_the_design_fails(self):
        simulator = Icarus(self.shared, DESIGNS / "hierarchy.v")
        shown = self.simulate(simulator, "set_toggle_region /tb/pins\ntoggle_start\nrun -all\n",
                              "+fail", status=1)
        self.assertEqual(levels(shown), [STILL_OPEN], shown)
        shown = self.simulate(simulator, script_for([]), "+fail", status=1)
        self.assertIn("the design has had enough", shown)
        self.assertEqual(Report(self.folder / "out.saif").header["DURATION"], ["600000.00"])


class SerialPort(InsideCase):
    """The example's design and script."""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.vcd = simulate_uart(cls.shared)
        cls.uart = Icarus(cls.shared, UART / "uart.v", UART / "uart_tb.v")

    def told(self, shown):
        return [line for line in shown.splitlines() if line.startswith("> ")]

    def test_script_of_the_example(self):
        script = (UART / "run.tcl").read_text()
        shown = self.simulate(self.uart, script)
        self.assertNotIn("came back", shown)
        self.assert_same_bits(self.folder / "uart.saif", self.replay(self.vcd, script) / "uart.saif")

    def test_commands_answer_as_in_a_replay(self):
        shown = self.simulate(self.uart, TALKATIVE)
        folder = self.folder / "replayed"
        folder.mkdir()
        replayed = must(WFSIM, self.vcd, "-do", self.folder / "run.tcl", folder=folder)
        self.assertEqual(self.told(shown), self.told(replayed))
        self.assertIn("12 of 12 bytes came back", shown)
        self.assert_same_bits(self.folder / "out.saif", folder / "out.saif")

    def test_system_tasks(self):
        # On no edge of the clock and on one: a task acts when its time step has settled.
        for start, unit in ((1000, '"1.0e-9"'), (1005, "1.0e-9")):
            with self.subTest(start=start, unit=unit):
                script = script_for([(start * 1000, (start + 40_000) * 1000)], "/tb/dut")
                self.simulate(self.uart, script.replace("1.0e-12", "1.0e-9"))
                scripted = without_date(self.folder / "out.saif")
                (self.folder / "out.saif").unlink()
                (self.folder / "record.v").write_text(TASKS % (start, unit))
                simulator = Icarus(self.folder, UART / "uart.v", UART / "uart_tb.v", "record.v")
                self.simulate(simulator, None)
                self.assertEqual(without_date(self.folder / "out.saif"), scripted)

    def test_failures(self):
        for name, (script, plusargs, variables, status, told) in FAILURES.items():
            with self.subTest(name):
                shown = self.simulate(self.uart, script, *plusargs, status=status,
                                      variables=variables)
                self.assertEqual(levels(shown), told, shown)
        for name, (script, plusargs, status, told) in FAILURES_ANYWHERE.items():
            with self.subTest(name):
                shown = self.simulate(self.uart, script, *plusargs, status=status)
                self.assertEqual(levels(shown), told, shown)

    def test_beside_another_module(self):
        script = (UART / "run.tcl").read_text().replace("quit", "run -all")
        self.simulate(self.uart, script)
        alone = without_date(self.folder / "uart.saif")
        compile_module(self.folder / "second.vpi", "-shared", "-fPIC")
        command = self.uart.command("+wf_do=run.tcl")
        place = command.index("-m")
        for order in (command[:place] + ["-m", "./second.vpi"] + command[place:],
                      command[:place + 2] + ["-m", "./second.vpi"] + command[place + 2:]):
            (self.folder / "uart.saif").unlink()
            shown = must(*order, folder=self.folder)
            self.assertRegex(shown, r"\nsecond module: 9\d\d\d changes\n")
            self.assertEqual(without_date(self.folder / "uart.saif"), alone)

    def test_a_simulator_that_is_not_known(self):
        compile_module(self.folder / "other", "-DUNKNOWN_SIMULATOR", "-rdynamic")
        done = run(*SANITIZED, "./other", MODULES / "wattforge.vpi", folder=self.folder)
        self.assertEqual((done.returncode, done.stdout), (1, ""))
        self.assertRegex(done.stderr, '^wattforge: .* not "Other Simulator".*\n$')


def compile_module(target, *options):
    must("c++", "-std=c++20", *options, "-I", ROOT, "-o", target, HERE / "second_module.cpp", folder=HERE)


if __name__ == "__main__":
    unittest.main()
