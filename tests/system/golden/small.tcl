# SPDX-License-Identifier: Apache-2.0
# One window from 1 ns (a change at its very start belongs to before) to 4 ns (a change at its very
# end is counted), and a report in ns.
set_toggle_region /top/clk /top/down /top/up /top/lone(7) /top/u1
run 10
toggle_start
run 30
toggle_stop
run -all
toggle_report small.saif 1.0e-9 /top
quit
