// SPDX-License-Identifier: Apache-2.0
// The gate-level kind: lanes of gates with delays between flip-flops, as synthesis leaves them. A lane
// stands still three quarters of the time, as gated blocks do. About 23,000 declared bits, nearly all
// single.
`timescale 1ns / 1ps

module dff (input clk, input d, output reg q);
    always @(posedge clk) q <= #0.05 d;
endmodule

// A flip-flop that keeps its value unless it is enabled; cleared by `clear`.
module dff_enable (input clk, input enable, input clear, input d, output q);
    wire hold, load, next, kept, enabled;
    not  #0.01 n0 (hold, enable);
    nand #0.02 g0 (load, d, enable);
    nand #0.02 g1 (kept, q, hold);
    nand #0.02 g2 (enabled, load, kept);
    and  #0.02 g3 (next, enabled, !clear);
    dff state (.clk(clk), .d(next), .q(q));
endmodule

module full_adder (input a, input b, input ci, output s, output co);
    wire half, generated, propagated;
    xor  #0.04 x0 (half, a, b);
    xor  #0.04 x1 (s, half, ci);
    nand #0.02 g0 (generated, a, b);
    nand #0.02 g1 (propagated, half, ci);
    nand #0.02 g2 (co, generated, propagated);
endmodule

// A 16-bit accumulator of a linear-feedback register's states, with parity and an all-ones flag.
module lane (input clk, input clear, input enable, output parity, output full);
    parameter [15:0] SEED = 16'd1;
    genvar i;
    generate
        for (i = 0; i < 16; i = i + 1) begin : noise
            wire q, d, tap, last;
        end
        for (i = 0; i < 16; i = i + 1) begin : feedback
            // Taps at 16, 14, 13 and 11; while cleared the register takes in the seed.
            if (i == 0) begin : first
                xor #0.04 x0 (noise[0].tap, noise[15].q, noise[13].q);
                xor #0.04 x1 (noise[0].last, noise[12].q, noise[10].q);
                xor #0.04 x2 (noise[0].d, noise[0].tap, noise[0].last);
            end else begin : other
                buf #0.01 b0 (noise[i].d, noise[i-1].q);
            end
            wire gated, loaded;
            and #0.02 g0 (gated, noise[i].d, !clear);
            or  #0.02 g1 (loaded, gated, clear && SEED[i]);
            wire moves;
            or  #0.02 g2 (moves, enable, clear);
            dff_enable state (.clk(clk), .enable(moves), .clear(1'b0), .d(loaded), .q(noise[i].q));
        end
        for (i = 0; i < 17; i = i + 1) begin : bit_of
            wire q, s, c, odd, all;
        end
        assign bit_of[0].c = 1'b0, bit_of[0].odd = 1'b0, bit_of[0].all = 1'b1;
        for (i = 0; i < 16; i = i + 1) begin : slice
            full_adder add (.a(noise[i].q), .b(bit_of[i].q), .ci(bit_of[i].c), .s(bit_of[i].s),
                            .co(bit_of[i+1].c));
            dff_enable state (.clk(clk), .enable(enable), .clear(clear), .d(bit_of[i].s),
                              .q(bit_of[i].q));
            xor #0.04 x0 (bit_of[i+1].odd, bit_of[i].odd, bit_of[i].q);
            and #0.02 a0 (bit_of[i+1].all, bit_of[i].all, bit_of[i].q);
        end
    endgenerate
    assign parity = bit_of[16].odd;
    assign full = bit_of[16].all;
endmodule

module tb;
    parameter LANES = 32;
    reg clk = 1'b0, clear = 1'b1;
    reg [1:0] turn = 2'd0;
    integer cycles;
    wire parity [0:LANES-1];
    wire full [0:LANES-1];

    genvar i;
    generate
        for (i = 0; i < LANES; i = i + 1) begin : block
            lane #(.SEED(16'd4097 * (i + 1)))
                l (.clk(clk), .clear(clear), .enable(turn == i % 4), .parity(parity[i]),
                   .full(full[i]));
        end
    endgenerate

    always #5 clk = !clk;
    always @(posedge clk) turn <= #0.05 turn + 2'd1;
    initial begin
        if (!$test$plusargs("nodump")) begin
            $dumpfile("bench.vcd");
            $dumpvars(0, tb);
        end
        if (!$value$plusargs("cycles=%d", cycles)) cycles = 100;
        repeat (4) @(posedge clk);
        #1 clear = 1'b0;
        repeat (cycles) @(posedge clk);
        $finish;
    end
endmodule
