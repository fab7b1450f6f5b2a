// SPDX-License-Identifier: Apache-2.0
// Declarations of every shape that a waveform can hold, all busy: odd ranges, one-bit vectors, words
// of a memory, escaped names, integers, reals, parameters, named blocks, tasks, nested generates,
// values through X and Z, changes undone within a time step.
`timescale 10ps / 10ps

module leaf #(parameter WIDTH = 3) (
    input clk, inout [WIDTH-1:0] pad, output reg [0:WIDTH-1] up, output tri [-1:-4] down
);
    reg          drive = 1'b0;
    supply1      vdd;
    wand         both;
    integer      number = -5;
    time         stamp;
    real         level = 0.5;
    reg [0:0]    zero_to_zero = 0;
    reg [5:5]    five = 1'bx;
    reg [3:-4]   around_zero;
    reg [69:0]   wide = 70'd1;
    reg          \odd.name[3] = 0;
    reg [1:0]    \odd/slash = 0;
    reg          pulse = 0;

    assign pad  = drive ? up : {WIDTH{1'bz}};
    assign down = clk ? 4'b1zx0 : {4{pulse}};
    assign both = pulse;
    assign both = clk;

    task advance(input [3:0] step);
        reg [3:0] local_copy;
        begin
            local_copy = step;
            number = number + local_copy;
        end
    endtask

    function [2:0] mix(input [2:0] in);
        mix = in ^ 3'b101;
    endfunction

    always @(posedge clk) begin : busy
        reg [1:0] inner;
        inner = number[1:0];
        advance(4'd3);
        up           <= mix(number[2:0]);
        drive        <= number[1];
        zero_to_zero <= !zero_to_zero;
        five         <= five === 1'bx ? 1'b0 : number[2] ? 1'bz : 1'b1;
        around_zero  <= {around_zero[2:-4], number[0]};
        wide         <= {wide[68:0], wide[69] ^ wide[3]};
        level        = level * 1.25;
        stamp        = $time;
        \odd.name[3] = inner[0];
        \odd/slash   = inner;
        // Up and down again in one time step, then for real in a later one.
        pulse = 1;
        #0 pulse = 0;
        #1 pulse = number[0];
    end
endmodule

module tb;
    reg        clk = 1'bx;
    wire [2:0] pad;
    wire [0:2] up;
    wire [3:0] down;
    reg  [7:0] memory [0:3];
    integer    i;

    leaf #(.WIDTH(3)) dut (.clk(clk), .pad(pad), .up(up), .down(down));

    genvar g, h;
    generate
        for (g = 1; g < 3; g = g + 1) begin : outer
            for (h = 0; h < 2; h = h + 1) begin : inner
                wire differs = clk ^ memory[g][h];
            end
        end
    endgenerate

    always #7 clk = clk === 1'bx ? 1'b0 : !clk;
    always @(negedge clk) begin
        memory[$time % 4] = memory[$time % 4] === 8'bx ? 8'd0 : memory[$time % 4] + 8'd37;
    end

    initial begin
        $dumpfile("shapes.vcd");
        $dumpvars(0, tb);
        for (i = 0; i < 4; i = i + 1) $dumpvars(0, memory[i]);
        #500 $dumpoff;
        #100 $dumpon;
        #900 $finish;
    end
endmodule
