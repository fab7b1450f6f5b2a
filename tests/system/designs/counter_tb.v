// SPDX-License-Identifier: Apache-2.0
// Rising edges at 10, 20, 30, ... ns, reset until after the second one; dumps to counter.wave.
`timescale 1ns / 1ns

module tb;
    reg        clk = 1'b1;
    reg        reset = 1'b1;
    wire [3:0] count;
    wire       odd;

    counter dut (.clk(clk), .reset(reset), .count(count), .odd(odd));

    always #5 clk = !clk;

    initial begin
        $dumpfile("counter.wave");
        $dumpvars(0, tb);
        #22 reset = 1'b0;
        #398 $finish;
    end
endmodule
