# SPDX-License-Identifier: Apache-2.0
# Records the switching activity of the serial port for 40 us, once its reset is over.
set_toggle_region /tb/dut
run 1us
toggle_start
run 40us
toggle_stop
toggle_report uart.saif 1.0e-9 /tb/dut
quit
