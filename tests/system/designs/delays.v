// SPDX-License-Identifier: Apache-2.0
// A netlist with delays: gates of different rise, fall and turn-off delays, a primitive of our own
// as flip-flop, shared nets of every kind, switches, pulses that are swallowed, several changes in
// one time step, X and Z on single bits. +vcd dumps everything to delays.vcd.
`timescale 1ps / 1ps

primitive flop_core (q, clk, d);
    output q;
    input clk, d;
    reg q;
    initial q = 1'bx;
    table
        // clk d : q : next
        (01) 0 : ? : 0;
        (01) 1 : ? : 1;
        (0x) 0 : 0 : 0;
        (0x) 1 : 1 : 1;
        (?0) ? : ? : -;
        (1x) ? : ? : -;
        ?  (??) : ? : -;
    endtable
endprimitive

module flop (input clk, input d, output q);
    flop_core #(37, 41) core (q, clk, d);
endmodule

module full_adder (input a, input b, input ci, output s, output co);
    wire half, both, carried;
    xor #(23, 19) g1 (half, a, b);
    xor #(21) g2 (s, half, ci);
    and #(11, 13) g3 (both, a, b);
    and #(12) g4 (carried, half, ci);
    or #(9, 10) g5 (co, both, carried);
endmodule

module adder #(parameter WIDTH = 8) (
    input [WIDTH-1:0] a, input [0:WIDTH-1] b, output [WIDTH-1:0] s, output co
);
    wire [WIDTH:0] carry;
    assign carry[0] = 1'b0;
    assign co = carry[WIDTH];
    genvar i;
    generate
        for (i = 0; i < WIDTH; i = i + 1)
            full_adder bit_ (.a(a[i]), .b(b[i]), .ci(carry[i]), .s(s[i]), .co(carry[i+1]));
    endgenerate
endmodule

// Three drivers on one line, one of them weak; a line that remembers nothing.
module shared (input [1:0] drive, input [1:0] value, inout line, output wired_and, output wired_or);
    wand       all_of;
    wor        any_of;
    tri0       down;
    tri1       up;
    supply0    ground;
    supply1    power;
    wire       swapped;

    bufif1 #(5, 7, 3) b0 (line, value[0], drive[0]);
    notif0 #(4, 6, 2) b1 (line, value[1], drive[1]);
    pulldown (weak0) p0 (swapped);
    bufif1 b2 (down, value[0], drive[0]);
    bufif0 b3 (up, value[1], drive[1]);
    tranif1 t0 (line, swapped, drive[0]);
    assign all_of = value[0];
    assign #3 all_of = drive[1];
    assign any_of = value[1];
    assign #3 any_of = drive[0];
    assign wired_and = all_of & power;
    assign wired_or  = any_of | ground;
endmodule

module tb;
    parameter WIDTH = 8;
    reg              clk = 1'b0;
    reg  [15:0]      noise = 16'h1d2c;
    wire [WIDTH-1:0] sum, kept;
    wire             carry, line, wired_and, wired_or;
    wire             swallowed, followed;
    reg              narrow = 1'b0;
    wire [3:0]       many;
    reg              a = 1'b0, b = 1'b1;

    adder #(.WIDTH(WIDTH)) dut (.a(noise[7:0]), .b(noise[15:8]), .s(sum), .co(carry));
    flop store[WIDTH-1:0] (.clk(clk), .d(sum), .q(kept));
    shared net (.drive(noise[1:0]), .value(noise[3:2]), .line(line), .wired_and(wired_and),
                .wired_or(wired_or));

    // A pulse shorter than the delay does not get through; one written with a delay does.
    assign #20 swallowed = narrow;
    reg followed_by;
    always @(narrow) followed_by <= #20 narrow;
    assign followed = followed_by;

    // Four bits that change one after the other in a single time step.
    assign many = {a ^ b, a & b, a | b, a};
    always @(posedge clk) begin
        a = !a;
        #0 b = noise[2];
        #0 a = noise[3];
        #0 b = a;
    end

    always #250 clk = !clk;
    always @(posedge clk)
        noise <= #31 {noise[14:0], noise[15] ^ noise[13] ^ noise[12] ^ noise[10]};
    always @(negedge clk) begin
        narrow <= 1'b1;
        narrow <= #7 1'b0;
        if (noise[4]) narrow <= #90 1'b1;
        narrow <= #130 1'bx;
        narrow <= #140 1'b0;
    end

    initial begin
        if ($test$plusargs("vcd")) begin
            $dumpfile("delays.vcd");
            $dumpvars(0, tb);
        end
        #40000 $finish;
    end
endmodule
