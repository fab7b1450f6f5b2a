// SPDX-License-Identifier: Apache-2.0
// Small enough for every writer of waveforms: two levels, a port on a slice, no X after the reset.
`timescale 1ns / 1ns

module low_bits (
    input        clk,
    input        reset,
    output reg [1:0] low
);
    always @(posedge clk) low <= reset ? 2'd0 : low + 2'd1;
endmodule

module counter (
    input            clk,
    input            reset,
    output     [3:0] count,
    output           odd
);
    reg [1:0] high;

    assign odd   = ^count;
    assign count[3:2] = high;
    low_bits part (.clk(clk), .reset(reset), .low(count[1:0]));
    always @(posedge clk) high <= reset ? 2'd0 : high + {1'b0, count[1:0] == 2'd3};
endmodule
