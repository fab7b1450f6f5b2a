# SPDX-License-Identifier: Apache-2.0
# Watches the RTL objects that the forward file names, and every net of the arbiter besides, from
# the end of the reset on.
read_rtl_saif sensor_bus.fsaif /tb/dut
set_net_monitoring_policy on /tb/dut/u_arbiter
set_toggle_region /tb/dut
run 25ns
toggle_start
run 500ns
toggle_stop
toggle_report sensor_bus.saif 1.0e-9 /tb/dut
quit
