// SPDX-License-Identifier: Apache-2.0
// The netlist-like kind: array multipliers of single-bit cells with delays, so that most signals are
// one bit wide and a clock cycle takes many time steps. About 50,000 declared bits.
`timescale 1ns / 1ps

module and_cell (input a, input b, output y);
    assign #0.02 y = a & b;
endmodule

module add_cell (input a, input b, input ci, output s, output co);
    assign #0.04 s = a ^ b ^ ci;
    assign #0.03 co = (a & b) | (a & ci) | (b & ci);
endmodule

module flop (input clk, input d, output reg q);
    always @(posedge clk) q <= #0.05 d;
endmodule

// One row of the array: adds a masked operand to the shifted sum of the row above.
module row (input [15:0] a, input factor, input [15:0] above, output [15:0] sum, output low);
    wire [16:0] carry;
    wire [15:0] total;
    assign carry[0] = 1'b0;
    genvar i;
    generate
        for (i = 0; i < 16; i = i + 1) begin : column
            wire product;
            and_cell g (.a(a[i]), .b(factor), .y(product));
            add_cell f (.a(product), .b(above[i]), .ci(carry[i]), .s(total[i]), .co(carry[i+1]));
        end
    endgenerate
    assign low = total[0];
    assign sum = {carry[16], total[15:1]};
endmodule

module multiplier (input clk, input [15:0] a, input [15:0] b, output [31:0] p);
    wire [15:0] partial [0:16];
    wire [31:0] product;
    assign partial[0] = 16'd0;
    assign product[31:16] = partial[16];
    genvar i;
    generate
        for (i = 0; i < 16; i = i + 1) begin : level
            row r (.a(a), .factor(b[i]), .above(partial[i]), .sum(partial[i+1]), .low(product[i]));
        end
        for (i = 0; i < 32; i = i + 1) begin : store
            flop r (.clk(clk), .d(product[i]), .q(p[i]));
        end
    endgenerate
endmodule

module tb;
    parameter COUNT = 13;
    reg clk = 1'b0;
    reg [15:0] noise [0:2*COUNT-1];
    integer cycles, k;
    wire [31:0] p [0:COUNT-1];

    genvar i;
    generate
        for (i = 0; i < COUNT; i = i + 1) begin : path
            multiplier m (.clk(clk), .a(noise[2*i]), .b(noise[2*i+1]), .p(p[i]));
        end
    endgenerate

    always #5 clk = !clk;
    always @(posedge clk)
        for (k = 0; k < 2 * COUNT; k = k + 1)
            noise[k] <= #0.05 {noise[k][14:0], noise[k][15] ^ noise[k][13] ^ noise[k][12] ^ noise[k][10]};
    initial begin
        for (k = 0; k < 2 * COUNT; k = k + 1) noise[k] = 16'd4097 * (k + 1);
        if (!$test$plusargs("nodump")) begin
            $dumpfile("bench.vcd");
            $dumpvars(0, tb);
        end
        if (!$value$plusargs("cycles=%d", cycles)) cycles = 100;
        repeat (cycles) @(posedge clk);
        $finish;
    end
endmodule
