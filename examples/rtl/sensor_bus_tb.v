// SPDX-License-Identifier: Apache-2.0
// Runs the sensor bus for 50 clocks after its reset and checks the sum. With +vcd the waveform is
// dumped to sensor_bus.vcd.
`timescale 1ns / 1ps

module tb;
    reg        clk = 1'b0;
    reg        reset = 1'b1;
    wire [7:0] sum;
    reg  [7:0] expected = 8'd0;

    sensor_bus dut (.clk(clk), .reset(reset), .sum(sum));

    always #5 clk = !clk;

    // What the collector must have seen, told from the bus itself.
    always @(posedge clk) if (!reset && dut.data !== 4'bz) expected <= expected + dut.data;

    initial begin
        if ($test$plusargs("vcd")) begin
            $dumpfile("sensor_bus.vcd");
            $dumpvars(0, tb);
        end
        #22 reset = 1'b0;
        #503;
        if (sum !== expected || sum === 8'd0) begin
            $display("sum is %0d, expected %0d", sum, expected);
            $finish_and_return(1);
        end
        $display("sum is %0d, as expected", sum);
        $finish;
    end
endmodule
