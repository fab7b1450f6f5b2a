// SPDX-License-Identifier: Apache-2.0
// Hierarchy: ports of all directions, vectors of both directions and odd ranges, memories, arrays of
// nets and of instances, generate and named blocks, escaped names, force, release and procedural
// assignment. +vcd dumps everything to hierarchy.vcd, +fail ends with an error.
`timescale 1ns / 1ps

// Ports in the old style: one under another name than its net, one that is two nets.
module old_style (clk, .outside(inner), .pair({left, right}), back);
    input        clk;
    input  [2:0] inner;
    output [1:0] left;
    output       right;
    inout  [0:1] back;
    reg    [1:0] left;
    reg          right;

    assign back = clk ? inner[1:0] : 2'bzz;
    always @(posedge clk) {left, right} <= inner + 3'd1;
endmodule

module lane #(parameter WIDTH = 5, parameter [15:0] SEED = 1) (
    input                  clk,
    input                  enable,
    input      [WIDTH-1:0] in,
    output reg [0:WIDTH-1] out,
    output tri [-1:-4]     low,
    inout      [7:0]       pad
);
    reg [15:0]  noise = SEED;
    reg [3:-4]  around_zero;
    reg [5:5]   five;
    reg [0:0]   zero_to_zero = 1'b0;
    reg [69:0]  wide = 70'd1;
    reg [7:0]   memory [0:3];
    reg [0:2]   odd_memory [5:3];
    reg [1:0]   grid [0:1][2:1];
    integer     number = -5, k;
    time        stamp;
    real        level = 0.5;
    event       done;
    reg         pulse = 1'b0;
    reg  [2:0]  held;
    wire [3:0]  mesh [1:0];
    wire        \odd.name[3] = noise[3];
    wire [1:0]  \odd/slash = noise[1:0];

    assign pad     = enable ? noise[7:0] : 8'bz;
    assign low     = clk ? {1'b1, 1'bz, 1'bx, noise[0]} : {4{pulse}};
    assign mesh[0] = noise[3:0];
    assign mesh[1] = mesh[0] ^ {4{pulse}};

    task advance(input [3:0] step);
        reg [3:0] copy;
        begin
            copy   = step;
            number = number + copy;
        end
    endtask

    function [15:0] next(input [15:0] from);
        next = {from[14:0], from[15] ^ from[13] ^ from[12] ^ from[10]};
    endfunction

    always @(posedge clk) begin : busy
        reg [1:0] inner;
        inner = noise[1:0];
        noise <= next(noise);
        advance({2'b00, inner});
        if (enable) out <= in ^ noise;
        zero_to_zero        <= !zero_to_zero;
        five                <= noise[2] ? 1'bz : noise[4];
        around_zero         <= {around_zero[2:-4], noise[5]};
        wide                <= {wide[68:0], wide[69] ^ wide[3]};
        memory[noise[1:0]]  <= noise[9:2];
        odd_memory[3 + noise[0]] <= noise[4:2];
        grid[noise[1]][1 + noise[2]] <= noise[1:0];
        level = level * 1.25;
        stamp = $time;
        -> done;
        begin : deeper
            reg seen;
            seen = inner[1];
        end
        // Up and down again in one time step, then for real in a later one.
        pulse = 1'b1;
        #0 pulse = 1'b0;
        #1 pulse = noise[0];
    end

    // A value that is replaced in the same time step, beside a bit that really changes.
    always @* begin
        held = 3'b101;
        held = {noise[1], 1'b0, noise[1]};
    end

    generate
        if (WIDTH > 4) begin : big
            reg [WIDTH-1:4] upper;
            always @(negedge clk) upper <= in[WIDTH-1:4];
        end else begin : little
            reg lower;
            always @(negedge clk) lower <= in[0];
        end
    endgenerate

    initial for (k = 0; k < 4; k = k + 1) if (k != 2) memory[k] = k;
endmodule

module pin (input clk, input d, output reg q);
    always @(posedge clk) q <= #2 d;
endmodule

module tb;
    reg         clk = 1'b0;
    reg         enable = 1'b1;
    reg  [2:0]  driven = 3'd0;
    wire [4:0]  first;
    wire [0:2]  second;
    wire [7:0]  pad_a, pad_b;
    wire [3:0]  pins;
    wire [1:0]  old_left, old_back;
    wire        old_right;
    reg  [3:0]  procedural = 4'd0;
    wire [3:0]  forced = pins ^ procedural;

    lane dut (.clk(clk), .enable(enable), .in({driven, driven[1:0]}), .out(first), .low(),
              .pad(pad_a));
    // The upper bits of this one are connected nowhere.
    lane #(.WIDTH(3), .SEED(16'hbeef)) \dut.b[1]/x (
        .clk(clk), .enable(!enable), .in(first[3:1]), .out(second), .pad(pad_b));
    pin pins_of[3:0] (.clk(clk), .d(first[4:1]), .q(pins));
    old_style old (.clk(clk), .outside(driven), .pair({old_left, old_right}), .back(old_back));

    genvar g, h;
    generate
        for (g = 1; g < 3; g = g + 1) begin : outer
            for (h = 0; h < 2; h = h + 1) begin : inner
                wire differs = clk ^ first[g + h];
                pin p (.clk(clk), .d(differs), .q());
            end
        end
    endgenerate

    always #5 clk = !clk;
    always @(negedge clk) begin
        driven <= driven + 3'd3;
        if (driven == 3'd6) enable <= !enable;
    end

    initial begin : forcing
        #203 force forced = 4'b1010;
        #20 force dut.out[1] = 1'b1;
        #14 release forced;
        #3 release dut.out[1];
        #7 force pad_b = 8'hzx;
        #31 release pad_b;
        assign procedural = 4'b0110;
        #40 deassign procedural;
        procedural = 4'bx01z;
        // Ends exactly on a clock edge.
        force clk = 1'b0;
        #17 release clk;
    end

    initial begin
        if ($test$plusargs("vcd")) begin
            $dumpfile("hierarchy.vcd");
            $dumpvars(0, tb);
            // The dump lists words of memories only when they are named.
            $dumpvars(0, dut.memory[0], dut.memory[1], dut.memory[2], dut.memory[3]);
            $dumpvars(0, dut.odd_memory[3], dut.odd_memory[4], dut.odd_memory[5]);
        end
        #600 if ($test$plusargs("fail")) $fatal(1, "the design has had enough");
        #400 $finish;
    end
endmodule
