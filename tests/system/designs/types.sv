// SPDX-License-Identifier: Apache-2.0
// SystemVerilog types: of two states and of four, enumerations, packed structures, arrays, a package,
// reals and strings. +vcd dumps everything to types.vcd.
`timescale 1ns / 100ps

package shared_things;
    typedef enum logic [2:0] {IDLE, LOAD, SHIFT, DONE = 6} state_t;
    typedef enum {RED, GREEN, BLUE} colour_t;
    typedef struct packed {
        logic [3:0] head;
        bit   [1:0] kind;
        logic       flag;
    } packet_t;
    int   passes = 0;
    logic seen;
endpackage

module stage
    import shared_things::*;
(
    input  bit            clk,
    input  logic          reset_n,
    input  packet_t       in,
    output packet_t       out,
    output logic    [0:5] history,
    output int            total,
    inout  wire     [1:0] both
);
    state_t            state;
    colour_t           colour;
    bit      [6:2]     two_state;
    byte               little = -3;
    byte unsigned      positive;
    shortint           middle;
    int                whole;
    longint            big = 64'h7fffffff;
    integer            four_state;
    bit                single;
    logic    [1:0][2:0] packed_array;
    logic    [3:0]     words [2];
    bit      [2:0]     bits_of [1:3];
    int                numbers [2];
    real               ratio = 1.0;
    string             label = "none";
    logic              glitch;

    assign both = single ? in.head[1:0] : 2'bz;

    always_comb begin
        glitch = 1'b1;
        glitch = state == SHIFT;
    end

    always_ff @(posedge clk or negedge reset_n)
        if (!reset_n) begin
            state <= IDLE;
            total <= 0;
        end else begin
            case (state)
                IDLE:    state <= LOAD;
                LOAD:    state <= in.flag ? SHIFT : DONE;
                SHIFT:   state <= DONE;
                default: state <= IDLE;
            endcase
            out              <= in;
            out.head         <= in.head ^ 4'b0110;
            total            <= total + in.kind;
            history          <= {history[1:5], in.flag};
            two_state        <= {two_state[5:2], in.head[0]};
            little            <= little + 8'sd5;
            positive         <= positive - 8'd1;
            middle           <= middle - 16'sd3;
            whole            <= whole ^ {whole[30:0], 1'b1};
            big            <= big + 64'sd3;
            four_state       <= in.flag ? total : 'x;
            single           <= in.head[2];
            packed_array     <= {packed_array[0], in.head[2:0]};
            words[in.flag]   <= in.head;
            bits_of[2]       <= in.head[3:1];
            numbers[1]       <= whole;
            colour           <= colour == BLUE ? RED : GREEN;
            if (in.head == 4'd5) colour <= BLUE;
            ratio            <= ratio * 1.5;
            passes           <= passes + 1;
            seen             <= in.flag;
        end

endmodule

module tb;
    import shared_things::*;
    bit         clk;
    logic       reset_n = 1'bx;
    packet_t    in = {4'd1, 2'd1, 1'b0};
    packet_t    out;
    logic [0:5] history;
    int         total;
    wire  [1:0] both;

    stage dut (.*);

    always #4.3 clk = !clk;
    always @(negedge clk) begin
        in.head <= {in.head[2:0], in.head[3] ^ in.head[2]};
        in.kind <= in.kind + 2'd1;
        in.flag <= in.head == 4'd9 ? 1'bx : in.head[1];
    end

    initial begin
        if ($test$plusargs("vcd")) begin
            $dumpfile("types.vcd");
            $dumpvars(0, tb);
            // The dump lists words of arrays only when they are named.
            $dumpvars(0, dut.words[0], dut.words[1]);
        end
        #3 reset_n = 1'b0;
        #10.1 reset_n = 1'b1;
        #700 $finish;
    end
endmodule
