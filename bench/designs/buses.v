// SPDX-License-Identifier: Apache-2.0
// The wide-bus kind: a pipeline of 1024-bit words that look random, so that every cycle changes half
// of all bits. About 90,000 declared bits.
`timescale 1ns / 1ps

module stage (input clk, input [1023:0] in, output reg [1023:0] out);
    always @(posedge clk) out <= {in[1020:0], in[1023:1021]};
endmodule

module tb;
    parameter STAGES = 22;
    reg clk = 1'b0;
    reg [1023:0] noise;
    integer cycles, k;

    genvar i;
    generate
        for (i = 0; i < STAGES; i = i + 1) begin : pipe
            wire [1023:0] in, out;
            if (i == 0) assign in = noise;
            else assign in = pipe[i-1].out;
            stage s (.clk(clk), .in(in), .out(out));
        end
    endgenerate

    always #5 clk = !clk;
    always @(posedge clk) noise <= {noise[991:0], noise[1023:992]} ^ (noise << 13) ^ (noise >> 7);
    initial begin
        for (k = 0; k < 32; k = k + 1) noise[32*k+:32] = 32'h9e3779b9 * (k + 1);
        if (!$test$plusargs("nodump")) begin
            $dumpfile("bench.vcd");
            $dumpvars(0, tb);
        end
        if (!$value$plusargs("cycles=%d", cycles)) cycles = 20;
        repeat (cycles) @(posedge clk);
        $finish;
    end
endmodule
