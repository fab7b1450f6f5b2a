// SPDX-License-Identifier: Apache-2.0
// The CPU-like kind: small cores in a deep hierarchy, narrow vectors, each core busy with another
// part of a pseudo-random program. About 23,000 declared bits.
`timescale 1ns / 1ps

module adder (input [15:0] a, input [15:0] b, input carry_in, output [15:0] sum, output carry_out);
    assign {carry_out, sum} = a + b + carry_in;
endmodule

module alu (
    input [2:0] operation, input [15:0] a, input [15:0] b, input [15:0] immediate,
    output reg [15:0] result, output zero, output carry
);
    wire [15:0] sum;
    wire        subtract = operation == 3'd1;
    adder add (.a(a), .b(subtract ? ~b : b), .carry_in(subtract), .sum(sum), .carry_out(carry));
    assign zero = result == 16'd0;
    always @*
        case (operation)
            3'd0, 3'd1: result = sum;
            3'd2:       result = a & b;
            3'd3:       result = a | b;
            3'd4:       result = a ^ b;
            3'd5:       result = {a[14:0], 1'b0};
            3'd6:       result = {1'b0, a[15:1]};
            default:    result = immediate;
        endcase
endmodule

module register (input clk, input write, input [15:0] in, output reg [15:0] out);
    always @(posedge clk) if (write) out <= in;
endmodule

module register_file (
    input clk, input write, input [2:0] target, input [2:0] source_a, input [2:0] source_b,
    input [15:0] in, output [15:0] a, output [15:0] b
);
    wire [127:0] all;
    assign a = all >> {source_a, 4'd0};
    assign b = all >> {source_b, 4'd0};
    genvar i;
    generate
        for (i = 0; i < 8; i = i + 1) begin : word
            register store (.clk(clk), .write(write && target == i), .in(in), .out(all[16*i+:16]));
        end
    endgenerate
endmodule

module fetch (input clk, input reset, input jump, input [15:0] target, output reg [15:0] pc,
              output [15:0] instruction);
    parameter [15:0] SEED = 16'd1;
    reg [15:0] noise;
    assign instruction = noise ^ {pc[7:0], pc[15:8]};
    always @(posedge clk)
        if (reset) begin
            pc    <= 16'd0;
            noise <= SEED;
        end else begin
            pc    <= jump ? target : pc + 16'd1;
            noise <= {noise[14:0], noise[15] ^ noise[13] ^ noise[12] ^ noise[10]};
        end
endmodule

module core (input clk, input reset, output [15:0] result);
    parameter [15:0] SEED = 16'd1;
    wire [15:0] pc, instruction, a, b;
    wire        zero, carry;
    reg  [15:0] held;
    reg         stalled;
    // During reset all registers are filled one after the other.
    reg  [2:0]  filled = 3'd0;
    wire        jump = !stalled && instruction[15:12] == 4'hf && !zero;
    fetch #(.SEED(SEED)) front (.clk(clk), .reset(reset), .jump(jump), .target(a), .pc(pc),
                                .instruction(instruction));
    register_file file (
        .clk(clk), .write(reset || !stalled), .target(reset ? filled : instruction[11:9]),
        .source_a(instruction[8:6]), .source_b(instruction[5:3]), .in(reset ? SEED : result),
        .a(a), .b(b)
    );
    alu unit (.operation(held[2:0]), .a(a), .b(b), .immediate(held), .result(result), .zero(zero),
              .carry(carry));
    always @(posedge clk) begin
        stalled <= !reset && carry && !stalled;
        held    <= instruction;
        filled  <= filled + reset;
    end
endmodule

module tile (input clk, input reset, output [15:0] mixed);
    parameter [15:0] SEED = 16'd1;
    wire [15:0] left, right;
    core #(.SEED(SEED))          low (.clk(clk), .reset(reset), .result(left));
    core #(.SEED(SEED + 16'd77)) high (.clk(clk), .reset(reset), .result(right));
    assign mixed = left ^ right;
endmodule

module cluster (input clk, input reset, output [15:0] mixed);
    parameter [15:0] SEED = 16'd1;
    wire [15:0] first, second;
    tile #(.SEED(SEED))           west (.clk(clk), .reset(reset), .mixed(first));
    tile #(.SEED(SEED + 16'd991)) east (.clk(clk), .reset(reset), .mixed(second));
    assign mixed = first + second;
endmodule

module tb;
    parameter CLUSTERS = 8;
    reg clk = 1'b0, reset = 1'b1;
    integer cycles;
    wire [15:0] mixed [0:CLUSTERS-1];

    genvar i;
    generate
        for (i = 0; i < CLUSTERS; i = i + 1) begin : chip
            cluster #(.SEED(16'd4097 * (i + 1))) c (.clk(clk), .reset(reset), .mixed(mixed[i]));
        end
    endgenerate

    always #5 clk = !clk;
    initial begin
        if (!$test$plusargs("nodump")) begin
            $dumpfile("bench.vcd");
            $dumpvars(0, tb);
        end
        if (!$value$plusargs("cycles=%d", cycles)) cycles = 100;
        repeat (20) @(posedge clk);
        #1 reset = 1'b0;
        repeat (cycles) @(posedge clk);
        $finish;
    end
endmodule
