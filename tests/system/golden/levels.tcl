# SPDX-License-Identifier: Apache-2.0
# A little of everything that says more at a higher debug level.
toggle_debug_level $env(LEVEL)
set_net_monitoring_policy on /kinds/nested
read_rtl_saif damaged.fsaif /kinds
if {$env(RTL)} {read_rtl_saif whole.fsaif /kinds}
set_toggle_region /kinds/nested /kinds/part_of
toggle_start
run 2 ns
toggle_stop
toggle_report levels.saif 1.0e-9 /kinds
quit
